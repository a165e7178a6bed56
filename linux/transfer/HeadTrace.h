// SPDX-License-Identifier: MIT
//
// Reports requests and the heads of answers as they go over the wire, without passwords, cookies and other
// secrets. Any thread.
#pragma once

#include <curl/curl.h>

#include <string>
#include <string_view>

#include "linux/transfer/CurlSupport.h"

namespace quillforth::platform {

/// `line` of a head without its end; the value of a secret field is "(not shown)". The fields of `settings`
/// are secret.
[[nodiscard]] std::string ShownHeadLine(std::string_view line, const TransferSettings& settings);

/// From now on `settings.trace` hears of what `handle` sends and gets. `settings` outlives the handle.
void TraceHeads(CURL* handle, const TransferSettings& settings);

}  // namespace quillforth::platform
