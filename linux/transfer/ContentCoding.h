// SPDX-License-Identifier: MIT
//
// Undoes the content codings of a page (RFC 9110, section 8.4).
//
// libcurl would do it, but takes a coded body that ends too early for a whole one. Pure; any thread.
#pragma once

#include <QByteArray>
#include <string_view>
#include <vector>

#include "linux/transfer/TransferText.h"

namespace quillforth::platform {

/// For the field Accept-Encoding.
inline constexpr const char* kAcceptedCodings = "gzip, deflate, br";

/// `fields`: the values of Content-Encoding. Puts what comes out into `body`, at most `maxLength` bytes. A
/// body without a byte has no coding. Failures: `unknownCoding`; `tooLong`; `brokenOff`, when it is damaged,
/// ends early, or has more than five codings.
[[nodiscard]] TransferOutcome UndoContentCodings(const std::vector<std::string_view>& fields,
                                                 qsizetype maxLength, QByteArray& body);

}  // namespace quillforth::platform
