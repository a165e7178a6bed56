// SPDX-License-Identifier: MIT
//
// Carries the links that the two passes over a page find into the link table.
//
// One thread.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include "common/BoundedText.h"
#include "common/ScratchMemory.h"
#include "linkextract/LinkTable.h"

namespace quillforth::linkextract {

/// The words of the first pass that are whole attribute values, between quotes after "=". The second pass
/// finds these links again.
class QuotedWords {
 public:
  explicit QuotedWords(std::string_view page) : page_(page) {}

  /// Links lie in the page, and come in its order. Those that are no attribute values are forgotten. So are
  /// links beyond a number that ordinary pages do not reach.
  void add(std::string_view link) {
    constexpr std::size_t kBytesForEach = 32;
    if (beginsLikeValue(link) && words_.size() < page_.size() / kBytesForEach) words_.push_back(wordOf(link));
  }
  /// Fast as long as the links that are asked for come in the order of the page, too.
  [[nodiscard]] bool contains(std::string_view link) noexcept {
    if (!beginsLikeValue(link)) return false;
    const Word wanted = wordOf(link);
    if (next_ > 0 && words_[next_ - 1].begin >= wanted.begin) next_ = 0;
    while (next_ < words_.size() && words_[next_].begin < wanted.begin) ++next_;
    return next_ < words_.size() && words_[next_] == wanted;
  }

 private:
  struct Word {
    std::uint32_t begin;
    std::uint32_t length;
    friend bool operator==(const Word&, const Word&) = default;
  };
  [[nodiscard]] bool beginsLikeValue(std::string_view link) const noexcept {
    const std::size_t begin = beginOf(link);
    return begin >= 2 && page_[begin - 2] == '=' && (page_[begin - 1] == '"' || page_[begin - 1] == '\'');
  }
  [[nodiscard]] std::size_t beginOf(std::string_view link) const noexcept {
    return static_cast<std::size_t>(link.data() - page_.data());
  }
  [[nodiscard]] Word wordOf(std::string_view link) const noexcept {
    return {static_cast<std::uint32_t>(beginOf(link)), static_cast<std::uint32_t>(link.size())};
  }

  std::string_view page_;
  common::ScratchVector<Word> words_;
  std::size_t next_ = 0;  // the first word not before the link that was asked for last
};

/// Gets the links of both passes over a page, and enters them into a table. Each link is entered a few links
/// after it was found, when the table's memory has arrived. Most links of the second pass, and links that a
/// page just repeats, need no look-up.
class LinkCollector {
 public:
  LinkCollector(std::string_view page, LinkTable& table) : words_(page), table_(table) {}

  void beginSecondPass() noexcept { isFirstPass_ = false; }

  /// A link as it stands in the page, cut at 255 bytes: a part of the page.
  void add(std::string_view link) {
    if (!isFirstPass_ && words_.contains(link)) return;
    if (recent_[0] != link && recent_[1] != link) addOther(link);
  }

  /// A link out of parts of the page that cuts have joined, cut at 255 bytes; copied.
  void addJoined(std::string_view link) {
    if (!isLeftOut(link)) collect(link, Kept::no);
  }

  /// Enters the last links. Call it after both passes.
  void finish() {
    for (std::size_t i = added_ - std::min(added_, kWaiting); i < added_; ++i) {
      table_.insert(waiting_[i % kWaiting].key, waiting_[i % kWaiting].hash);
    }
    added_ = 0;
  }

 private:
  struct Waiting {
    std::uint32_t hash;
    std::string_view key;
    std::array<char, common::BoundedText::kMaxLength> text;  // holds the key when nothing else does
  };
  enum class Kept { no, yes };
  static constexpr std::size_t kWaiting = 16;
  static constexpr std::size_t kNearby = 4096;  // links; a table of so few stays in the processor's cache

  [[nodiscard]] static bool isLeftOut(std::string_view link) noexcept {
    if (link.empty()) return false;
    return link[0] == '#' ||
           (common::UpperCased(link[0]) == 'M' && common::StartsWithNoCase(link, "mailto:"));
  }

  void addOther(std::string_view link) {
    if (isLeftOut(link)) return;
    if (isFirstPass_) words_.add(link);
    recent_[1] = std::exchange(recent_[0], link);
    collect(link, Kept::yes);
  }

  void collect(std::string_view link, Kept kept) {
    const std::uint32_t hash = LinkTable::hashOf(link);
    if (table_.size() < kNearby) {
      table_.insert(link, hash);
      return;
    }
    Waiting& last = waiting_[added_ % kWaiting];
    if (added_ >= kWaiting) table_.insert(last.key, last.hash);
    last.hash = hash;
    last.key = kept == Kept::yes
                   ? link
                   : std::string_view(last.text.data(), link.copy(last.text.data(), last.text.size()));
    table_.expect(hash);
    if (added_ >= kWaiting / 2) table_.expectEntry(waiting_[(added_ - kWaiting / 2) % kWaiting].hash);
    ++added_;
  }

  bool isFirstPass_ = true;
  QuotedWords words_;
  std::array<std::optional<std::string_view>, 2> recent_;  // two, because pages alternate
  LinkTable& table_;
  std::array<Waiting, kWaiting> waiting_;
  std::size_t added_ = 0;
};

/// The second pass: gives `links` every link that stands between the two texts of a pattern that is switched
/// on, pattern by pattern, duplicates included. `text` has at most 2^31 - 1 bytes.
void ScanAttributes(std::string_view text, LinkCollector& links);

}  // namespace quillforth::linkextract
