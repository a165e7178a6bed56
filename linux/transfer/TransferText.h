// SPDX-License-Identifier: MIT
//
// The outcome of a transfer, and the sentence that people read about it. The sentences are our own: they hold
// nothing that a server sent, and no credentials. Pure; any thread.
#pragma once

#include <curl/curl.h>

#include <QString>

#include "platform/TransferFailure.h"

namespace quillforth::platform {

enum class OutcomeKind {
  whole,  ///< all is here
  status,
  proxyStatus,  ///< what a proxy answered when it was asked for a connection
  malformedURL,
  unsupportedURL,
  proxyNotFound,
  hostNotFound,
  unreachable,
  noSecureConnection,
  untrustedCertificate,
  unreadableCertificates,
  silence,
  slowHead,
  timeout,
  noAnswer,
  connectionLost,
  brokenOff,
  incomplete,
  malformedAnswer,
  impossibleLength,
  headTooLong,
  unknownCoding,
  tooLong,
  folder,
  accessDenied,
  fileRefused,
  noSuchFile,
  tooManyRedirects,
  forbiddenRedirect,
  loginWanted,
  loginRefused,
  proxyLoginWanted,
  proxyLoginRefused,
  outOfMemory,
  system,
  file,
  noDestination,
  other
};

struct TransferOutcome {
  OutcomeKind kind = OutcomeKind::whole;
  /// The status for `status` and `proxyStatus`, an error number for `system` and `file`, libcurl's code for
  /// `other`.
  long detail = 0;
  int retryAfter = 0;  ///< seconds for which the server wants to be left alone
  QString host{};      ///< that server's, as `HostOf` has it

  [[nodiscard]] bool isWhole() const { return kind == OutcomeKind::whole; }
  /// "The server answered 404 Not Found."; codes without a registered phrase (RFC 9110, section 15) stand
  /// alone. Null when all is here.
  [[nodiscard]] QString sentence() const;
  [[nodiscard]] TransferFailure failure() const;
};

[[nodiscard]] TransferOutcome OutcomeOf(CURLcode code);

/// `error`: an error number of writing a file.
[[nodiscard]] QString FileErrorText(int error);

}  // namespace quillforth::platform
