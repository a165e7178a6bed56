// SPDX-License-Identifier: MIT
//
// The string extension that runs a string as a script.
#pragma once

#include <QString>
#include <optional>

#include "platform/ScriptHost.h"

namespace quillforth::classify {

/// The result of the script `source` as text. Nothing on every failure, and for a result without a text.
///
/// Of a list the item at 0 is taken. Items are counted from 1, so every list gives nothing; that is
/// kept. Blocks while the script runs; any thread.
[[nodiscard]] std::optional<QString> runScript(const QString& source, platform::ScriptHost& host);

}  // namespace quillforth::classify
