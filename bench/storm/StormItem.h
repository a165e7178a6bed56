// SPDX-License-Identifier: MIT
//
// What stands behind each URL of the storm: a file or a page, and what becomes of whoever asks for it.
//
// Everything follows from the path and a random seed, so that the server, the ledger and the check of the
// files on the disk agree without a word between them. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillforth::bench {

enum class Fate {
  whole,       ///< comes at once
  slow,        ///< comes after `milliseconds`
  dripping,    ///< comes in pieces over `milliseconds`
  unmeasured,  ///< comes without a length, ended by the end of the connection
  redirected,  ///< comes from a second place
  renamed,     ///< comes under a name that others have too
  locked,      ///< asks for a name and a password, and takes "user" and "word"
  missing,     ///< 404
  cut,         ///< ends in the middle
  reset,       ///< the connection is reset in the body
  held,        ///< nothing comes for `milliseconds`, and then the connection ends
};

struct StormItem {
  std::string path;  ///< "/PHASE-NUMBER.ext", of a link on a page "/PHASE-NUMBER-LINK.ext"; no query
  bool isPage = false;
  Fate fate = Fate::whole;
  int milliseconds = 0;
  std::size_t length = 0;  ///< of a file's body, in bytes

  /// Whether the server gives all of it to everybody who asks and waits.
  [[nodiscard]] bool isForAll() const { return fate < Fate::locked; }
};

/// `path` may have a query, which does not count.
[[nodiscard]] StormItem ItemAt(std::string_view path, std::uint64_t seed);
/// The paths of the links that a page holds, in its order.
[[nodiscard]] std::vector<std::string> LinksOf(const StormItem& page, std::uint64_t seed);
/// A file begins with its path and a newline.
[[nodiscard]] std::string BodyOf(const StormItem& item, std::uint64_t seed);
/// The path that the bytes of a file begin with; nothing when that is none.
[[nodiscard]] std::optional<std::string> PathInBody(std::string_view body);
/// The name that the server gives a file of the fate `renamed`.
[[nodiscard]] std::string SharedName(const StormItem& item, std::uint64_t seed);

}  // namespace quillforth::bench
