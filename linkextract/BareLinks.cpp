// SPDX-License-Identifier: MIT

#include "linkextract/BareLinks.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "common/BoundedText.h"
#include "linkextract/ByteScan.h"

namespace quillforth::linkextract {

namespace {

using common::BoundedText;

constexpr std::size_t kNone = std::string_view::npos;
/// The longest suffix that needs no table.
constexpr std::size_t kLongestPlainSuffix = 4;

constexpr bool IsLetter(char c) noexcept {
  const char upper = common::UpperCased(c);
  return upper >= 'A' && upper <= 'Z';
}

constexpr bool IsDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

/// Whether `suffix`, which is not empty, needs no table.
inline bool IsPlainSuffix(std::string_view suffix) noexcept {
  if (suffix.size() > kLongestPlainSuffix) return false;
  bool hasLetter = false;
  for (const char c : suffix.substr(1)) {
    if (!IsLetter(c) && !IsDigit(c)) return false;
    hasLetter = hasLetter || IsLetter(c);
  }
  return hasLetter;
}

enum class Role : std::uint8_t {
  word,       // a URL may hold it
  delimiter,  // ends a word
  spoiler,    // neither: no word that holds it is a candidate
};

constexpr std::array<Role, 256> kRoles = [] {
  std::array<Role, 256> roles{};
  roles.fill(Role::spoiler);
  for (unsigned char c = '!'; c <= '@'; ++c) roles[c] = Role::word;
  for (unsigned char c = 'A'; c <= 'Z'; ++c) roles[c] = roles[c - 'A' + 'a'] = Role::word;
  roles['_'] = Role::word;
  for (const char c : {'"', '\'', '(', ')', '<', '>', '\r', '\n'}) {
    roles[static_cast<unsigned char>(c)] = Role::delimiter;
  }
  return roles;
}();

Role RoleOf(char c) noexcept {
  return kRoles[static_cast<unsigned char>(c)];
}

/// Walks the dots of a text from front to back and keeps where their words end and begin, so that no byte is
/// looked at twice in either direction.
class WordFinder {
 public:
  explicit WordFinder(std::string_view text) : text_(text) {}

  /// The first delimiter or spoiler after `dot`; the text's size when none is left.
  [[nodiscard]] std::size_t endOfWord(std::size_t dot) noexcept {
    if (dot >= end_) {
      end_ = dot + 1;
      while (end_ < text_.size() && RoleOf(text_[end_]) == Role::word) ++end_;
    }
    return end_;
  }

  /// Where the word before `dot` begins; kNone when a spoiler begins it. The text's first byte counts as a
  /// delimiter, whatever it is.
  [[nodiscard]] std::size_t beginOfWord(std::size_t dot) noexcept {
    for (std::size_t position = dot - 1; position >= seen_; --position) {
      if (RoleOf(text_[position]) == Role::word) continue;
      stop_ = position;
      break;
    }
    seen_ = dot;
    return stop_ > 0 && RoleOf(text_[stop_]) == Role::spoiler ? kNone : stop_ + 1;
  }

 private:
  std::string_view text_;
  std::size_t end_ = 0;
  std::size_t seen_ = 1;  // `stop_` is the last delimiter or spoiler before this position, or the first byte
  std::size_t stop_ = 0;
};

}  // namespace

KnownSuffixes::KnownSuffixes(const classify::CExtensionMap& extensions) : extensions_(extensions) {
  const std::size_t longestKey = extensions.longestKey();
  longest_ =
      longestKey >= BoundedText::kMaxLength ? kNone : longestKey - std::min<std::size_t>(longestKey, 1);
  for (const auto& node : extensions.nodes()) {
    const std::string_view key = node->key.view();
    if (key.size() < 2 || key[0] != '.') continue;
    firsts_[static_cast<unsigned char>(key[1])] = true;
    for (const std::size_t bit : filterBits(key.substr(1))) filter_.set(bit);
  }
}

bool KnownSuffixes::find(std::string_view suffix) const {
  if (suffix.size() > longest_) return false;
  suffix = suffix.substr(0, BoundedText::kMaxLength - 1);
  for (const std::size_t bit : filterBits(suffix)) {
    if (!filter_.test(bit)) return false;
  }
  BoundedText key(".");
  key.append(suffix);
  return extensions_.find(key.view()) != nullptr;
}

std::array<std::size_t, 2> KnownSuffixes::filterBits(std::string_view suffix) noexcept {
  const std::uint64_t mixed = (WordAt(suffix) + suffix.size()) * 0x9E3779B97F4A7C15;
  return {static_cast<std::size_t>(mixed >> 49) % kFilterBits,
          static_cast<std::size_t>(mixed >> 34) % kFilterBits};
}

bool LooksLikeSuffix(std::string_view suffix, const KnownSuffixes& known) {
  return suffix.empty() || IsPlainSuffix(suffix) || known.contains(suffix);
}

void FindBareLinks(std::string_view text, const KnownSuffixes& known, LinkCollector& links) {
  MatchCursor dots(
      text, [](std::string_view all, std::size_t offset) { return ByteBlock::load(all, offset).mask('.'); });
  const std::size_t longestSuffix = std::max(known.longest(), kLongestPlainSuffix);
  WordFinder words(text);
  for (std::size_t dot = dots.next(2); dot != kNone;) {
    const std::size_t end = words.endOfWord(dot);
    if (end == text.size()) return;  // the words of all later dots end there, too
    std::size_t resume = dot + 1;
    const std::string_view suffix(text.begin() + dot + 1, text.begin() + end);
    if (RoleOf(text[end]) == Role::spoiler) {
      resume = end;
    } else if (suffix.size() > longestSuffix) {
      resume = end - 1 - longestSuffix;  // earlier dots of the word are too far from its end
    } else if (!suffix.empty() && (IsPlainSuffix(suffix) || known.contains(suffix))) {
      const std::size_t begin = words.beginOfWord(dot);
      if (begin < dot) links.add(text.substr(begin, std::min(end - begin, BoundedText::kMaxLength)));
    }
    dot = dots.next(resume);
  }
}

}  // namespace quillforth::linkextract
