// SPDX-License-Identifier: MIT
//
// Finds URL-like words around the dots of a page's text, whatever markup they stand in.
//
// Any thread.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <string_view>

#include "classify/ExtensionMap.h"
#include "linkextract/LinkCollector.h"

namespace quillforth::linkextract {

/// The extensions of a table, with a filter before them. Most words of a page are no extension, and a page of
/// dots asks at every byte.
class KnownSuffixes {
 public:
  /// `extensions` must not change while this lives.
  explicit KnownSuffixes(const classify::CExtensionMap& extensions);

  /// Whether "." and `suffix`, which is not empty, cut at 255 bytes in all, is an extension of the table.
  [[nodiscard]] bool contains(std::string_view suffix) const {
    return firsts_[static_cast<unsigned char>(suffix[0])] && find(suffix);
  }
  /// The length, without the leading ".", of the longest suffix that can be known. A suffix that is too long
  /// is cut to 255 bytes. So when an extension has that length, there is no limit, and this is the largest
  /// number there is.
  [[nodiscard]] std::size_t longest() const noexcept { return longest_; }

 private:
  static constexpr std::size_t kFilterBits = 1U << 15;
  [[nodiscard]] bool find(std::string_view suffix) const;
  [[nodiscard]] static std::array<std::size_t, 2> filterBits(std::string_view suffix) noexcept;

  const classify::CExtensionMap& extensions_;
  std::size_t longest_;
  std::array<bool, 256> firsts_{};  // first bytes of the known suffixes
  std::bitset<kFilterBits> filter_;
};

/// Whether what follows a "." up to the end of its word makes that word look like a URL or a file name: a
/// known extension, or two to four characters of which the second and later ones are letters or digits, with
/// a letter among them. An empty text looks like one, too.
[[nodiscard]] bool LooksLikeSuffix(std::string_view suffix, const KnownSuffixes& known);

/// Gives `links` a candidate for every "." of `text` whose word ends in a suffix. A word reaches from one
/// delimiter (a quote, a parenthesis, "<", ">" or a line end) to the next, and holds only characters that a
/// URL may have. Candidates come in the order of the dots, duplicates included.
///
/// The first byte of the text is never part of a candidate. A word that ends with the text is no candidate.
/// Both are kept on purpose. Linear in the text.
void FindBareLinks(std::string_view text, const KnownSuffixes& known, LinkCollector& links);

}  // namespace quillforth::linkextract
