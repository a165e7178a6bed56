// SPDX-License-Identifier: MIT
//
// Finds the links that stand between the begin and end texts of the pattern list.
//
// Each match is cut out of the text before the next search, which starts at the front again, because a cut
// can join the text on its two sides to a new match. The result is exactly that of cutting and starting
// over, in time linear in the text; docs/link-scanning.md says why. Any thread.
#pragma once

#include <string_view>

#include "linkextract/LinkCollector.h"

namespace quillforth::linkextract {

/// Gives `links` every link of the enabled pairs of `kPatternList`, pair by pair, duplicates included. `text`
/// has at most 2^31 - 1 bytes.
void ScanAttributes(std::string_view text, LinkCollector& links);

}  // namespace quillforth::linkextract
