// SPDX-License-Identifier: MIT

#include "linkextract/ScanPage.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "linkextract/AttributeScan.h"
#include "linkextract/BareLinks.h"
#include "linkextract/LinkSink.h"
#include "linkextract/ResolveLink.h"
#include "linkextract/TextSearch.h"

namespace quillforth::linkextract {

namespace {

/// Enters links into a table, each a few links after it was found: time enough for the table's memory to
/// arrive.
class LinkCollector final : public LinkSink {
 public:
  LinkCollector(const common::BoundedText& base, LinkTable& table)
      : resolver_(base), table_(table), overwrites_(!table.empty()) {}

  void add(std::string_view link) override {
    constexpr std::string_view kMailto = "mailto:";
    if (!link.empty() &&
        (link[0] == '#' || (common::UpperCased(link[0]) == 'M' && common::StartsWithNoCase(link, kMailto)))) {
      return;
    }
    const std::uint32_t hash = LinkTable::hashOf(link);
    if (table_.size() < kNearby) {
      enter(link, hash);
      return;
    }
    Waiting& last = waiting_[added_ % kWaiting];
    if (added_ >= kWaiting) enter(last.key(), last.hash);
    last.hash = hash;
    last.length = link.copy(last.text.data(), last.text.size());
    table_.expect(last.hash);
    if (added_ >= kWaiting / 2) table_.expectEntry(waiting_[(added_ - kWaiting / 2) % kWaiting].hash);
    ++added_;
  }

  void finish() {
    for (std::size_t i = added_ - std::min(added_, kWaiting); i < added_; ++i) {
      enter(waiting_[i % kWaiting].key(), waiting_[i % kWaiting].hash);
    }
    added_ = 0;
  }

 private:
  struct Waiting {
    std::uint32_t hash;
    std::size_t length;
    std::array<char, common::BoundedText::kMaxLength> text;
    [[nodiscard]] std::string_view key() const { return {text.data(), length}; }
  };
  static constexpr std::size_t kWaiting = 16;
  static constexpr std::size_t kNearby = 4096;  // links of a table that the processor holds at hand

  void enter(std::string_view key, std::uint32_t hash) {
    const LinkTable::Insertion insertion = table_.insert(key, hash);
    if (!insertion.isNew && !overwrites_) return;  // the same base gave it the same value before
    resolver_.resolve(key, absolute_);
    table_.setValue(insertion.entry, absolute_.view());
  }

  LinkResolver resolver_;
  LinkTable& table_;
  bool overwrites_;  // entries of another page, perhaps of another base, are in the table
  common::BoundedText absolute_;
  std::array<Waiting, kWaiting> waiting_;
  std::size_t added_ = 0;
};

}  // namespace

void ScanPage(std::string_view page, const common::BoundedText& base, LinkTable& table,
              const classify::CExtensionMap& extensions) {
  page = UpToNul(page);
  if (page.size() > std::numeric_limits<std::int32_t>::max()) return;
  LinkCollector collector(base, table);
  FindBareLinks(page, KnownSuffixes(extensions), collector);
  ScanAttributes(page, collector);
  collector.finish();
}

}  // namespace quillforth::linkextract
