// SPDX-License-Identifier: MIT
//
// Finds the links that stand between the begin and end texts of the pattern list.
//
// Each pattern's matches are cut out of the text before the next search, which starts from the front again: a
// cut can join what stood on its two sides to a new match. The result is exactly that of cutting and starting
// over, in time linear in the text; docs/link-scanning.md says why. Pure but for the sink; any thread.
#pragma once

#include <string_view>

#include "linkextract/LinkSink.h"

namespace quillforth::linkextract {

/// Gives `sink` every link of the enabled pairs of `kPatternList`, pair by pair, duplicates included. `text`
/// has at most 2^31 - 1 bytes.
void ScanAttributes(std::string_view text, LinkSink& sink);

}  // namespace quillforth::linkextract
