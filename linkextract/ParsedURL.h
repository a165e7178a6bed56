// SPDX-License-Identifier: MIT
//
// A URL text split into its parts.
//
// The splitting is textual and never fails: nonsense gives some parts. It follows no standard. Its oddities
// are kept on purpose, because the links of a page resolve against these parts. Any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "classify/ExtensionMap.h"
#include "common/BoundedText.h"
#include "common/FourCharCode.h"
#include "linkextract/TextList.h"

namespace quillforth::linkextract {

enum class UrlScheme : std::uint32_t { http = 1, ftp = 2, https = 3 };

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

}  // namespace quillforth::linkextract
