// SPDX-License-Identifier: MIT
//
// What people read when a download fails. Sentences of our own: nothing of what a server sent, no
// credentials. Pure; any thread.
#pragma once

#include <curl/curl.h>

#include <QString>

namespace quillforth::platform {

/// "The server answered 404 Not Found."; codes without a registered phrase (RFC 9110, section 15) stand
/// alone.
[[nodiscard]] QString HTTPStatusText(long status);
/// `status`: of the last HTTP response, 0 when there was none.
[[nodiscard]] QString TransferErrorText(CURLcode code, long status);
/// `error`: an error number of writing a file.
[[nodiscard]] QString FileErrorText(int error);

}  // namespace quillforth::platform
