// SPDX-License-Identifier: MIT
//
// What the header of a transfer's last response says about the body that follows.
//
// Redirects and refused logins bring headers of their own, so this is read only once the body begins, or the
// transfer has ended. On the thread that drives the transfer.
#pragma once

#include <curl/curl.h>

#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillforth::platform {

/// The status of the last response; 0 when it was not of HTTP, or did not come.
[[nodiscard]] long LastHTTPStatus(CURL* handle);

/// Whether a header's line says how long the body is, but with a blank before the colon: some take it away,
/// some do not know the field then (RFC 9112, section 5.1).
[[nodiscard]] bool IsBrokenFramingField(std::string_view line);

/// The values of the fields called `name` in the last response, at most 100; `origin` is one of libcurl's
/// CURLH_ bits.
[[nodiscard]] std::vector<std::string> HeaderValues(CURL* handle, const char* name,
                                                    unsigned origin = CURLH_HEADER);

/// Whether the body has a transfer coding that cannot be undone here, so that nobody can tell whether it is
/// whole; "identity" is none (RFC 9112, sections 6.1 and 6.3).
[[nodiscard]] bool HasUnknownTransferCoding(CURL* handle);

/// The number of bytes that the response announces, -1 when it announces none. Nothing when what it says
/// cannot be: no number, one that 63 bits cannot hold, or two that differ (RFC 9112, section 6.3).
[[nodiscard]] std::optional<std::int64_t> AnnouncedLength(CURL* handle);

/// The MIME type, lower case, without parameters; empty when there is none.
[[nodiscard]] std::string MIMETypeOfResponse(CURL* handle);

/// Whether the body lists a folder of an FTP server.
[[nodiscard]] bool IsFTPFolder(CURL* handle);

/// Whether the body has a content coding (RFC 9110, section 8.4).
[[nodiscard]] bool HasContentCoding(CURL* handle);

/// The safe file name that goes with the response.
[[nodiscard]] QString FilenameOfResponse(CURL* handle, const std::string& mimeType);

}  // namespace quillforth::platform
