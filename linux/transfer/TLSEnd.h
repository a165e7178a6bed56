// SPDX-License-Identifier: MIT
//
// How a TLS connection ends: by its server's word, or cut off by whoever is in between.
//
// libcurl takes both for the end of a body that has no length. The transfer thread only.
#pragma once

#include <curl/curl.h>

#include <memory>

namespace quillforth::platform {

/// Whether the server has said that it sends nothing more (close_notify; RFC 8446, section 6.1).
using TLSEnd = std::shared_ptr<const bool>;

/// Makes the connections that `handle` opens take notice of their end.
void WatchTLSEnd(CURL* handle);
/// Of the connection that `handle` is using now; null when it is not one of TLS. To be taken before the end
/// can come; it outlives the connection.
[[nodiscard]] TLSEnd TLSEndOf(CURL* handle);
/// Whether bytes of the connection that `handle` is using now have come, but nobody has read them.
[[nodiscard]] bool HasUnreadTLS(CURL* handle);

}  // namespace quillforth::platform
