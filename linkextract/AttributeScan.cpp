// SPDX-License-Identifier: MIT

#include "linkextract/AttributeScan.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "common/BoundedText.h"
#include "linkextract/ByteScan.h"
#include "linkextract/PatternList.h"
#include "linkextract/WorkText.h"

namespace quillforth::linkextract {

namespace {

using common::BoundedText;
using common::UpperCased;
using Position = WorkText::Position;

/// The attribute names with their "=", in upper case. Each ends in another letter, by which it is told from
/// the others, and no two neighbouring letters stand in two of them, so that a seam can join at most one.
constexpr std::array<std::string_view, 3> kNames{"HREF=", "SRC=", "BACKGROUND="};
constexpr std::size_t kShortestName = 4;

/// The last letter of a name, which stands for it.
using NameLetter = char;
constexpr NameLetter LetterOf(std::string_view name) {
  return UpperCased(name[name.size() - 2]);
}

/// A pair of the pattern list, taken apart.
struct Row {
  NameLetter name = 0;
  Position nameLength = 0;
  char quote = 0;  // stands between the name and the link; 0 for none
  char end = 0;
};

constexpr Row RowOf(const PatternPair& pair) {
  const bool quoted = !pair.begin.ends_with('=');
  const std::string_view name = pair.begin.substr(0, pair.begin.size() - (quoted ? 1 : 0));
  return {LetterOf(name), static_cast<Position>(name.size()), quoted ? pair.begin.back() : '\0', pair.end[0]};
}

constexpr bool IsKnown(const PatternPair& pair) {
  const Row row = RowOf(pair);
  return pair.end.size() == 1 && std::any_of(kNames.begin(), kNames.end(), [&](std::string_view name) {
           return name.size() == row.nameLength && LetterOf(name) == row.name &&
                  std::equal(name.begin(), name.end(), pair.begin.begin(),
                             [](char a, char b) { return a == UpperCased(b); });
         });
}
static_assert(std::all_of(kPatternList.begin(), kPatternList.end(),
                          [](const PatternPair& pair) { return !pair.enabled || IsKnown(pair); }));

/// Two letters that follow each other in a name.
struct Joint {
  char before;
  char after;
  std::string_view name;
  std::size_t split;  // of the name, between the two
};

constexpr std::size_t kJointCount = [] {
  std::size_t count = 0;
  for (const std::string_view name : kNames) count += name.size() - 1;
  return count;
}();

constexpr std::array<Joint, kJointCount> kJoints = [] {
  std::array<Joint, kJointCount> joints{};
  std::size_t count = 0;
  for (const std::string_view name : kNames) {
    for (std::size_t split = 1; split < name.size(); ++split) {
      joints[count++] = {name[split - 1], name[split], name, split};
    }
  }
  return joints;
}();

/// Which bytes are the last letter of a name.
std::uint64_t LastLetters(const ByteBlock& block) {
  std::uint64_t letters = 0;
  for (const std::string_view name : kNames) letters |= block.maskNoCase(LetterOf(name));
  return letters;
}

/// Positions right after the "=" of every name in the text, ascending.
std::vector<Position> FindNames(std::string_view text) {
  MatchCursor ends(text, [](std::string_view all, std::size_t offset) {
    const ByteBlock block = ByteBlock::load(all, offset);
    const std::uint64_t equals = block.mask('=');
    const bool carried =
        offset > 0 && (equals & 1) != 0 && LastLetters(ByteBlock::load(all.substr(offset - 1, 1), 0)) != 0;
    return equals & (LastLetters(block) << 1 | (carried ? 1 : 0));
  });
  std::vector<Position> names;
  names.reserve(text.size() / kShortestName + 1);  // untouched memory costs nothing; growing would
  for (std::size_t end = ends.next(0); end != std::string_view::npos; end = ends.next(end + 1)) {
    const std::string_view upToHere = text.substr(0, end + 1);
    for (const std::string_view name : kNames) {
      if (upToHere.size() < name.size()) continue;
      if (common::StartsWithNoCase(upToHere.substr(upToHere.size() - name.size()), name)) {
        names.push_back(static_cast<Position>(end + 1));
      }
    }
  }
  return names;
}

class AttributeScanner {
 public:
  AttributeScanner(std::string_view text, LinkSink& sink)
      : work_(text, kShortestName + 1), names_(FindNames(text)), sink_(sink) {}

  [[nodiscard]] bool hasNames() const { return !names_.empty(); }

  /// Finds and cuts out all that lies between the pair's texts.
  void run(const Row& row) {
    work_.rewind();
    kept_ = read_ = 0;
    joined_.reset();
    while (const std::optional<Position> name = nextName()) {
      work_.moveTo(*name);
      const std::optional<Position> begin = linkAfter(*name, row);
      if (!begin) {
        keep(*name);
        continue;
      }
      const Position end = work_.find(row.end, *begin);
      if (end == WorkText::kNowhere) {  // nor does it follow any later name
        keep(*name);
        break;
      }
      emit(*begin, end);
      cut(work_.stepBackBy(work_.placeAt(*name), row.nameLength), end + 1);
    }
    names_.erase(names_.begin() + static_cast<std::ptrdiff_t>(kept_),
                 names_.begin() + static_cast<std::ptrdiff_t>(read_));
  }

 private:
  std::optional<Position> nextName() {
    if (joined_) return std::exchange(joined_, std::nullopt);
    if (read_ == names_.size()) return std::nullopt;
    return names_[read_++];
  }

  // Fewer names are kept than were read: what a seam adds stands for the one that was cut out there.
  void keep(Position name) { names_[kept_++] = name; }

  /// Where the link begins if `name` and what follows it are the row's begin text.
  [[nodiscard]] std::optional<Position> linkAfter(Position name, const Row& row) const {
    WorkText::Place letter = work_.stepBackBy(work_.placeAt(name), 2);
    const std::string_view text = work_.text();
    if (UpperCased(text[letter.position]) != row.name) return std::nullopt;
    const Position begin = work_.firstKept(name);
    if (row.quote == 0) return begin;
    if (begin >= text.size() || text[begin] != row.quote) return std::nullopt;
    return begin + 1;
  }

  void emit(Position begin, Position end) {
    if (work_.isWholeUpTo(end)) {
      sink_.add(work_.text().substr(begin, std::min<std::size_t>(end - begin, BoundedText::kMaxLength)));
      return;
    }
    std::array<char, BoundedText::kMaxLength> pieces;
    sink_.add({pieces.data(), work_.copy(begin, end, pieces).count});
  }

  void cut(WorkText::Place begin, Position end) {
    const WorkText::Cut seam = work_.cut(begin, end);
    while (read_ < names_.size() && names_[read_] <= seam.end) ++read_;
    if (seam.begin == 0 || seam.end == work_.text().size()) return;
    if (kept_ > 0 && names_[kept_ - 1] == seam.begin) {
      joined_ = names_[--kept_];  // a quote may follow it now
    } else {
      joined_ = nameAcross(seam);
    }
  }

  /// The position after the "=" of the name that the seam has joined together.
  [[nodiscard]] std::optional<Position> nameAcross(const WorkText::Cut& seam) const {
    const char before = UpperCased(work_.text()[seam.begin - 1]);
    const char after = UpperCased(work_.text()[seam.end]);
    for (const Joint& joint : kJoints) {
      if (joint.before != before || joint.after != after) continue;
      if (!endsBeforeSeam(joint.name.substr(0, joint.split))) return std::nullopt;
      return endAfterSeam(seam.end, joint.name.substr(joint.split));
    }
    return std::nullopt;
  }

  [[nodiscard]] bool endsBeforeSeam(std::string_view part) const {
    WorkText::Place place = work_.placeBeforeLastCut();
    for (; !part.empty(); part.remove_suffix(1)) {
      if (!work_.stepBack(place) || UpperCased(work_.text()[place.position]) != part.back()) return false;
    }
    return true;
  }

  [[nodiscard]] std::optional<Position> endAfterSeam(Position begin, std::string_view part) const {
    std::array<char, kNames[2].size()> bytes;
    const WorkText::Copied copied =
        work_.copy(begin, work_.text().size(), std::span(bytes).first(part.size()));
    if (!common::StartsWithNoCase({bytes.data(), copied.count}, part)) return std::nullopt;
    return copied.end;
  }

  WorkText work_;
  // Positions right after the "=" of every name that is left, ascending. During a run: those kept so far,
  // then names that are gone, then from `read_` on those to come.
  std::vector<Position> names_;
  std::size_t kept_ = 0;
  std::size_t read_ = 0;
  std::optional<Position> joined_;  // the name to look at before these
  LinkSink& sink_;
};

}  // namespace

void ScanAttributes(std::string_view text, LinkSink& sink) {
  AttributeScanner scanner(text, sink);
  for (const PatternPair& pair : kPatternList) {
    if (pair.enabled && scanner.hasNames()) scanner.run(RowOf(pair));
  }
}

}  // namespace quillforth::linkextract
