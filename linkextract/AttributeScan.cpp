// SPDX-License-Identifier: MIT
//
// Finds the links that stand between the begin and end texts of the pattern list.
//
// Each match is cut out of the text before the next search, which starts at the front again, because a cut
// can join the text on its two sides to a new match. The result is exactly that of cutting and starting
// over, in time linear in the text; docs/link-scanning.md says why.

#include "linkextract/LinkCollector.h"

#include <bit>
#include <cstring>
#include <span>
#include <vector>

#include "linkextract/ByteScan.h"
#include "linkextract/WorkText.h"

namespace quillforth::linkextract {

namespace {

// Both texts match without regard to ASCII letter case.
struct PatternPair {
  std::string_view begin;
  std::string_view end;
  bool enabled = true;
};

// The texts between which a page's links stand.
//
// The order counts: the matches of one pair are cut out before the next pair is searched. So a quoted value
// is gone before an unquoted pair can find its attribute, and a value that ends at ">" is preferred to one
// that ends at a blank. "option value=" is switched off, and "SRC=" up to a blank stands here twice; both
// on purpose.
constexpr std::array<PatternPair, 15> kPatternList{{
    {"HREF=\"", "\""},
    {"SRC=\"", "\""},
    {"HREF='", "'"},
    {"SRC='", "'"},
    {"SRC=", " "},
    {"background=\"", "\""},
    {"background='", "'"},
    {"option value=\"", "\"", false},
    {"option value='", "'", false},
    {"HREF=", ">"},
    {"SRC=", ">"},
    {"background=", ">"},
    {"HREF=", " "},
    {"SRC=", " "},
    {"background=", " "},
}};

using common::BoundedText;
using common::UpperCased;
using Position = WorkText::Position;

/// The attribute names with their "=", in upper case. Their last letters differ, so that these tell the names
/// apart. No two neighbouring letters stand in two of them, so that a seam can join at most one.
constexpr std::array<std::string_view, 3> kNames{"HREF=", "SRC=", "BACKGROUND="};
constexpr std::size_t kLongestName = 11;
constexpr char kCaseBit = 0x20;  // what makes an upper-case letter a lower-case one

constexpr char LastLetter(std::string_view name) {
  return name[name.size() - 2];
}

constexpr bool EqualsNoCase(std::string_view upper, std::string_view text) {
  return upper.size() == text.size() && std::equal(upper.begin(), upper.end(), text.begin(),
                                                   [](char a, char b) { return a == UpperCased(b); });
}

/// A pair of the pattern list, split into its parts.
struct Row {
  std::size_t name = kNames.size();  // of `kNames`
  char quote = 0;                    // stands between the name and the link; 0 for none
  char end = 0;
};

constexpr Row RowOf(const PatternPair& pair) {
  const bool quoted = !pair.begin.ends_with('=');
  const std::string_view wanted = pair.begin.substr(0, pair.begin.size() - (quoted ? 1 : 0));
  const auto* const name = std::find_if(kNames.begin(), kNames.end(), [wanted](std::string_view candidate) {
    return EqualsNoCase(candidate, wanted);
  });
  return {static_cast<std::size_t>(name - kNames.begin()), quoted ? pair.begin.back() : '\0', pair.end[0]};
}

static_assert(std::all_of(kPatternList.begin(), kPatternList.end(), [](const PatternPair& pair) {
  return !pair.enabled || (RowOf(pair).name < kNames.size() && pair.end.size() == 1);
}));

/// Two characters that follow each other in a name.
struct Joint {
  std::uint8_t name = kNames.size();
  std::uint8_t split = 0;  // of the name, between the two
};

/// The index of two characters, by the low five bits of each. Other pairs may share it, but no two joints do.
constexpr std::size_t JointIndex(char before, char after) {
  return static_cast<std::size_t>((before & 31) << 5 | (after & 31));
}

constexpr std::array<Joint, 1024> kJoints = [] {
  std::array<Joint, 1024> joints{};
  for (std::size_t name = 0; name < kNames.size(); ++name) {
    for (std::size_t split = 1; split < kNames[name].size(); ++split) {
      joints[JointIndex(kNames[name][split - 1], kNames[name][split])] = {static_cast<std::uint8_t>(name),
                                                                          static_cast<std::uint8_t>(split)};
    }
  }
  return joints;
}();
static_assert(std::count_if(kJoints.begin(), kJoints.end(), [](const Joint& joint) {
                return joint.split > 0;
              }) == kNames[0].size() + kNames[1].size() + kNames[2].size() - kNames.size());

using Positions = common::ScratchVector<Position>;

/// Where a name stands in a text.
struct NameMatches {
  Positions ends;                     // right after each "=", ascending
  std::array<bool, 256> followers{};  // which bytes stand there
};
/// For each name.
using NamePositions = std::array<NameMatches, kNames.size()>;

bool IsLastLetter(char c) {
  return std::any_of(kNames.begin(), kNames.end(),
                     [c](std::string_view name) { return LastLetter(name) == UpperCased(c); });
}

/// Which bytes are the last letter of a name.
std::uint64_t LastLetters(const ByteBlock& block) {
  std::uint64_t letters = 0;
  for (const std::string_view name : kNames) letters |= block.maskNoCase(LastLetter(name));
  return letters;
}

/// The last four bytes of each name, in lower case, as a number.
using Tail = std::uint32_t;
constexpr std::array<Tail, kNames.size()> kTails = [] {
  std::array<Tail, kNames.size()> tails{};
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    std::array<char, sizeof(Tail)> bytes{};
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      bytes[at] = static_cast<char>(kNames[i][kNames[i].size() - bytes.size() + at] | kCaseBit);
    }
    tails[i] = std::bit_cast<Tail>(bytes);
  }
  return tails;
}();

/// The name that ends right before `end`, after an "=".
std::size_t NameBefore(std::string_view text, std::size_t end) {
  Tail tail = 0;
  if (end < sizeof tail) return kNames.size();
  std::memcpy(&tail, text.data() + end - sizeof tail, sizeof tail);
  tail |= 0x20202020;  // exact for letters, and "=" has that bit
  const auto found = static_cast<std::size_t>(std::find(kTails.begin(), kTails.end(), tail) - kTails.begin());
  if (found == kNames.size()) return found;
  const std::string_view head = kNames[found].substr(0, kNames[found].size() - sizeof tail);
  if (end < kNames[found].size()) return kNames.size();
  return EqualsNoCase(head, text.substr(end - kNames[found].size(), head.size())) ? found : kNames.size();
}

NamePositions FindNames(std::string_view text) {
  MatchCursor ends(text, [](std::string_view all, std::size_t offset) {
    const ByteBlock block = ByteBlock::load(all, offset);
    const std::uint64_t equals = block.mask('=');
    const bool carried = (equals & 1) != 0 && offset > 0 && IsLastLetter(all[offset - 1]);
    return equals & (LastLetters(block) << 1 | (carried ? 1 : 0));
  });
  NamePositions names;
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    // Untouched memory costs nothing; growing would.
    names[i].ends.reserve(text.size() / kNames[i].size() + 1);
  }
  for (std::size_t equals = ends.next(0); equals != std::string_view::npos; equals = ends.next(equals + 1)) {
    const std::size_t name = NameBefore(text, equals + 1);
    if (name == kNames.size()) continue;
    names[name].ends.push_back(static_cast<Position>(equals + 1));
    if (equals + 1 < text.size()) names[name].followers[static_cast<unsigned char>(text[equals + 1])] = true;
  }
  return names;
}

class AttributeScanner {
 public:
  AttributeScanner(std::string_view text, LinkCollector& links)
      : names_(FindNames(text)), work_(text, MostCuts(text, names_)), links_(links) {}

  /// Finds and cuts out all that lies between the pair's texts.
  void run(const Row& row) {
    const std::span<Position> names = names_[row.name].ends;
    if (names.empty() || !mayMatch(row)) return;
    work_.setTo(names.front());
    constexpr std::size_t kAhead = 32;  // how many names ahead the memory of the text is asked for
    std::size_t kept = 0;
    std::size_t read = 0;
    std::optional<Position> revived;  // by a seam: to be looked at before all others
    while (revived || read < names.size()) {
      const Position name = revived ? *std::exchange(revived, std::nullopt) : names[read++];
      if (names.size() - read > kAhead) work_.expect(names[read + kAhead]);
      work_.moveTo(name);
      if (work_.isCutBefore(name)) continue;
      // Fewer names are kept than were read: a name that a seam revives takes the place of one that was cut
      // out.
      names[kept++] = name;
      const Position begin = work_.firstKept(name);
      if (row.quote != 0 && !work_.is(begin, row.quote)) continue;
      const Position inner = begin + (row.quote != 0 ? 1 : 0);
      const Position end = work_.find(row.end, inner);
      if (end == WorkText::kNowhere) break;  // it does not follow any later name either
      --kept;
      emit(inner, end);
      const WorkText::Cursor start = work_.stepBackBy(work_.cursorAt(name), kNames[row.name].size());
      const WorkText::Cut seam = work_.cut(start, end + 1);
      if (kept > 0 && names[kept - 1] == seam.begin) {
        revived = names[--kept];  // a quote may follow it now
        hasNewFollowers_ = true;
      } else {
        revived = joinAcross(seam, row.name);
      }
      // Unread names before a joined one lie in cuts, of which the last knows only its own.
      while (revived && read < names.size() && names[read] < *revived) ++read;
    }
    const auto first = names_[row.name].ends.begin();
    names_[row.name].ends.erase(first + static_cast<std::ptrdiff_t>(kept),
                                first + static_cast<std::ptrdiff_t>(read));
    for (std::size_t i = 0; i < kNames.size(); ++i) takeIn(joined_[i], names_[i].ends);
  }

 private:
  /// Whether a name of the row may stand before its quote.
  [[nodiscard]] bool mayMatch(const Row& row) const {
    return row.quote == 0 || hasNewFollowers_ ||
           names_[row.name].followers[static_cast<unsigned char>(row.quote)];
  }

  /// Each cut holds a name of the page: where it takes out one that a seam has joined, it swallows the seam's
  /// cut. So there are no more cuts than names. A name has 4 bytes or more. So a cut and the byte after it
  /// have 3 bytes for the cut itself and 3 for every name in it.
  static std::size_t MostCuts(std::string_view text, const NamePositions& found) {
    std::size_t names = 0;
    for (const NameMatches& each : found) names += each.ends.size();
    return std::min(names, (text.size() + 1) / 3 - names);
  }

  void emit(Position begin, Position end) {
    if (!work_.isWholeUpTo(end)) return emitPieces(begin, end);
    links_.add(work_.text().substr(begin, std::min<std::size_t>(end - begin, BoundedText::kMaxLength)));
  }

  void emitPieces(Position begin, Position end) {
    std::array<char, BoundedText::kMaxLength> pieces;
    links_.addJoined({pieces.data(), work_.copy(begin, end, pieces).count});
  }

  /// Looks for a name that the seam has joined. Gives it back when it is the running row's, else notes it for
  /// the rows to come.
  [[nodiscard]] std::optional<Position> joinAcross(WorkText::Cut seam, std::size_t running) {
    if (seam.begin == 0 || seam.end == work_.text().size()) return std::nullopt;
    const char before = work_.text()[seam.begin - 1];
    if (before == '=') hasNewFollowers_ = true;
    const Joint joint = kJoints[JointIndex(before, work_.text()[seam.end])];
    return joint.split == 0 ? std::nullopt : joinAt(joint, seam, running);
  }

  [[nodiscard]] std::optional<Position> joinAt(Joint joint, WorkText::Cut seam, std::size_t running) {
    if (!endsBeforeSeam(kNames[joint.name].substr(0, joint.split))) return std::nullopt;
    const std::optional<Position> end = endAfterSeam(seam.end, kNames[joint.name].substr(joint.split));
    if (end) hasNewFollowers_ = true;
    if (!end || joint.name == running) return end;
    joined_[joint.name].push_back(*end);
    return std::nullopt;
  }

  [[nodiscard]] bool endsBeforeSeam(std::string_view part) const {
    WorkText::Cursor cursor = work_.cursorBeforeLastCut();
    for (; !part.empty(); part.remove_suffix(1)) {
      if (!work_.stepBack(cursor) || UpperCased(work_.text()[cursor.position]) != part.back()) return false;
    }
    return true;
  }

  [[nodiscard]] std::optional<Position> endAfterSeam(Position begin, std::string_view part) const {
    std::array<char, kLongestName> bytes;
    const WorkText::Copied copied =
        work_.copy(begin, work_.text().size(), std::span(bytes).first(part.size()));
    if (!EqualsNoCase(part, {bytes.data(), copied.count})) return std::nullopt;
    return copied.end;
  }

  static void takeIn(Positions& added, Positions& names) {
    if (added.empty()) return;
    const auto old = static_cast<std::ptrdiff_t>(names.size());
    names.insert(names.end(), added.begin(), added.end());
    std::inplace_merge(names.begin(), names.begin() + old, names.end());
    added.clear();
  }

  NamePositions names_;  // may hold names that are cut out
  WorkText work_;
  std::array<Positions, kNames.size()> joined_;  // by seams of the running row; not its own name
  bool hasNewFollowers_ = false;                 // a seam stands right after a name, or in one
  LinkCollector& links_;
};

}  // namespace

void ScanAttributes(std::string_view text, LinkCollector& links) {
  AttributeScanner scanner(text, links);
  for (const PatternPair& pair : kPatternList) {
    if (pair.enabled) scanner.run(RowOf(pair));
  }
}

}  // namespace quillforth::linkextract
