// SPDX-License-Identifier: MIT
//
// Why a transfer has failed, for programs. Plain values; any thread.
#pragma once

#include <QString>

namespace quillforth::platform {

struct TransferFailure {
  QString code;          ///< one word: "status", "silence", "hostNotFound", ...; null when there is none
  int httpStatus = 0;    ///< of the answer, when that is the reason
  int retryAfter = 0;    ///< seconds for which the server wants to be left alone
  bool mayPass = false;  ///< the same request may well succeed later
  QString host{};        ///< that gave `retryAfter`, after redirects; as `HostOf` (net/URL.h) has it
};

}  // namespace quillforth::platform
