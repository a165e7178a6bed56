// SPDX-License-Identifier: MIT
//
// What the header of a transfer's last response says about the body that follows.
//
// Redirects and refused logins bring headers of their own, so this is read only once the body begins, or the
// transfer has ended. The transfer thread only.
#pragma once

#include <curl/curl.h>

#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillforth::platform {

/// The status of the last response; 0 when it was not of HTTP, or did not come.
[[nodiscard]] long LastHTTPStatus(CURL* handle);

/// The values of all fields called `name` in the last response; `origin` is one of libcurl's CURLH_ bits.
[[nodiscard]] std::vector<std::string> HeaderValues(CURL* handle, const char* name,
                                                    unsigned origin = CURLH_HEADER);

/// The number of bytes that the response announces, -1 when it announces none. Nothing when what it says
/// cannot be: no number, one that 63 bits cannot hold, or two that differ (RFC 9112, section 6.3).
[[nodiscard]] std::optional<std::int64_t> AnnouncedLength(CURL* handle);

/// The MIME type, lower case, without parameters; empty when there is none.
[[nodiscard]] std::string MIMETypeOfResponse(CURL* handle);

/// Whether the body has a content coding (RFC 9110, section 8.4).
[[nodiscard]] bool HasContentCoding(CURL* handle);

/// The safe file name that goes with the response.
[[nodiscard]] QString FilenameOfResponse(CURL* handle, const std::string& mimeType);

}  // namespace quillforth::platform
