// SPDX-License-Identifier: MIT
//
// Turns a raw link and its page's base into an absolute URL.
//
// Links are bytes, not strings: pages lie about their encoding, and a link is compared and queued exactly as
// it stands. Every result fits a BoundedText; what does not fit is cut. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "classify/ExtensionMap.h"
#include "common/BoundedText.h"
#include "common/Status.h"

namespace quillforth::linkextract {

/// A list of bounded texts in the order in which they were appended.
///
/// Records come from a process-wide pool. Any thread as long as no list is shared.
class TextList {
 public:
  struct Record {
    common::BoundedText text;
    Record* next;
  };

  TextList() = default;
  ~TextList() { clear(); }
  TextList(TextList&& other) noexcept { swap(other); }
  TextList& operator=(TextList&& other) noexcept {
    swap(other);
    return *this;
  }

  /// Cut at 255 bytes; duplicates are kept.
  void append(std::string_view text);
  [[nodiscard]] bool contains(std::string_view text) const;
  /// True when it was appended, false when an equal text stood there already. Linear in the list.
  bool addIfAbsent(std::string_view text);
  void clear();

  [[nodiscard]] std::int32_t count() const { return count_; }
  /// The head of the records, linked by `next`; null when empty.
  [[nodiscard]] const Record* first() const { return head_; }

 private:
  void swap(TextList& other) noexcept;

  Record* head_ = nullptr;
  Record* tail_ = nullptr;
  std::int32_t count_ = 0;
};

enum class UrlScheme : std::uint32_t { http = 1, ftp = 2, https = 3 };

/// A URL text split into its parts.
///
/// The splitting is textual and never fails: nonsense gives some parts. It follows no standard. Its oddities
/// are kept on purpose, because the links of a page resolve against these parts. Any thread.
struct ParsedURL {
  ParsedURL() = default;
  /// Without `extensions` the two codes stay 0. An empty text leaves every part as it is.
  explicit ParsedURL(const common::BoundedText& text, const classify::CExtensionMap* extensions = nullptr);

  common::BoundedText url;             ///< the text without its last "#" and what follows
  UrlScheme scheme = UrlScheme::http;  ///< compared byte by byte: "HTTPS" is http, as is everything unknown
  common::BoundedText host;            ///< between "://" and the next "/", user and port included
  common::BoundedText directory;       ///< between host and file name, without "/" at either end
  TextList segments;                   ///< the directory at its "/", empty ones left out
  common::BoundedText fileNameWithQuery;
  common::BoundedText fileName;       ///< after the last "/", up to the last "$" or "?"
  common::BoundedText extension;      ///< from the file name's last "." on; may be empty
  common::BoundedText query;          ///< after the last "?"
  common::BoundedText dollarPart;     ///< after the last "$"
  common::BoundedText fragment;       ///< after a "#" that is left in `url`; empty unless the text is odd
  common::FourCharCode fileType = 0;  ///< of the extension; 0 when unknown
  common::FourCharCode creator = 0;   ///< of the extension; 0 when unknown
};

/// Resolves any number of links against one base, which is split only once.
///
/// Never fails and never contacts the network: nonsense gives some text. The scheme written is always
/// "http:", also under an "https:" or "ftp:" base. A link that begins with "../" climbs once for every
/// "../" in it, wherever that stands. Both are intended.
class LinkResolver {
 public:
  explicit LinkResolver(const common::BoundedText& base);

  /// Writes the absolute URL of the first 255 bytes of `link`.
  void resolve(std::string_view link, common::BoundedText& absolute) const;

 private:
  void climb(std::string_view link, common::BoundedText& absolute) const;

  common::BoundedText site_;             // "http://host"
  common::BoundedText folder_;           // "http://host/directory/"
  common::BoundedText trail_;            // as `folder_`, but made of the segments
  std::vector<std::uint8_t> trailEnds_;  // where "http://host/" and each segment with its "/" end in `trail_`
};

/// The absolute URL of `link` on a page whose base is `base`, as `LinkResolver` has it.
[[nodiscard]] common::BoundedText ResolveLink(const common::BoundedText& base,
                                              const common::BoundedText& link);

}  // namespace quillforth::linkextract
