// SPDX-License-Identifier: MIT

#include "linkextract/ScanPage.h"

#include <cstdint>
#include <limits>

#include "linkextract/AttributeScan.h"
#include "linkextract/BareLinks.h"
#include "linkextract/LinkSink.h"
#include "linkextract/ResolveLink.h"
#include "linkextract/TextSearch.h"

namespace quillforth::linkextract {

namespace {

class LinkCollector final : public LinkSink {
 public:
  LinkCollector(const common::BoundedText& base, LinkTable& table)
      : resolver_(base), table_(table), overwrites_(!table.empty()) {}

  void add(std::string_view link) override {
    if (link.starts_with('#') || common::StartsWithNoCase(link, "mailto:")) return;
    const LinkTable::Insertion insertion = table_.insert(link);
    if (!insertion.isNew && !overwrites_) return;  // the same base gave it the same value before
    resolver_.resolve(link, absolute_);
    table_.setValue(insertion.entry, absolute_.view());
  }

 private:
  LinkResolver resolver_;
  LinkTable& table_;
  bool overwrites_;  // entries of another page, perhaps of another base, are in the table
  common::BoundedText absolute_;
};

}  // namespace

void ScanPage(std::string_view page, const common::BoundedText& base, LinkTable& table,
              const classify::CExtensionMap& extensions) {
  page = UpToNul(page);
  if (page.size() > std::numeric_limits<std::int32_t>::max()) return;
  LinkCollector collector(base, table);
  FindBareLinks(page, KnownSuffixes(extensions), collector);
  ScanAttributes(page, collector);
}

}  // namespace quillforth::linkextract
