// SPDX-License-Identifier: MIT
//
// From a loaded page to its links: everything that needs no controller.
//
// The page is not parsed into elements: links are what stands between fixed attribute texts, and URL-like
// words around dots, wherever these are. Any thread as long as no table is shared.
#pragma once

#include <string_view>

#include "classify/ExtensionMap.h"
#include "common/BoundedText.h"
#include "linkextract/LinkTable.h"

namespace quillforth::linkextract {

/// Records every link of `page` in `table` under its raw text with its absolute URL: first the bare words, in
/// the order of their dots, then the attributes' links, pattern by pattern. A link that the table holds
/// already keeps its place and gets the URL that this page's base gives. Links that begin with "#" or
/// "mailto:" are left out.
///
/// The page ends at its first NUL byte. A page of 2^31 bytes or more is refused: it has no links. Linear in
/// the page. Besides the page and the table it takes memory of at most twice the page's size, and hardly any
/// for ordinary pages.
void ScanPage(std::string_view page, const common::BoundedText& base, LinkTable& table,
              const classify::CExtensionMap& extensions);

/// The base of the links of `page`. If the head holds a <base href= with any quotes, it is the first
/// <base href="..."> anywhere in the page. Else, or when that is empty, it is `url`. Cut at 255 bytes.
[[nodiscard]] common::BoundedText FindPageBase(std::string_view page, std::string_view url);

/// The links of a page that was loaded from `url` as `bytes`; none when there is no base at all.
[[nodiscard]] LinkTable ExtractPageLinks(std::string_view bytes, std::string_view url,
                                         const classify::CExtensionMap& extensions);

}  // namespace quillforth::linkextract
