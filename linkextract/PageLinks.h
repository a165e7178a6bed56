// SPDX-License-Identifier: MIT
//
// From a loaded page to its links: everything that needs no controller.
//
// Any thread.
#pragma once

#include <string_view>

#include "classify/ExtensionMap.h"
#include "common/BoundedText.h"
#include "linkextract/LinkTable.h"

namespace quillforth::linkextract {

/// The base of the links of `page`. If the head holds a <base href= with any quotes, it is the first
/// <base href="..."> anywhere in the page. Else, or when that is empty, it is `url`. Cut at 255 bytes.
[[nodiscard]] common::BoundedText FindPageBase(std::string_view page, std::string_view url);

/// The links of a page that was loaded from `url` as `bytes`; none when there is no base at all.
[[nodiscard]] LinkTable ExtractPageLinks(std::string_view bytes, std::string_view url,
                                         const classify::CExtensionMap& extensions);

}  // namespace quillforth::linkextract
