// SPDX-License-Identifier: MIT
//
// The program's own folder among the user's data; downloads go there when no other folder was chosen.
//
// Failures are handed back and never shown. Any thread.
#pragma once

#include <optional>

#include "common/FileReference.h"
#include "platform/FileManager.h"

namespace quillforth::fileops {

/// "Tessary Software/Quillforth" in the user's application-support folder; created, with its parents, when
/// missing. Nothing when that fails.
[[nodiscard]] std::optional<platform::FileReference> GetSupportFolder(platform::FileManager& files);

}  // namespace quillforth::fileops
