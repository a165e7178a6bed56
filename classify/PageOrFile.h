// SPDX-License-Identifier: MIT
//
// Whether a URL is a web page, whose links are wanted, or a file, which is wanted itself.
//
// An extension decides without a question to the server: the URL is a page when the table's type begins with
// "text/", in exactly these letters, else a file. Only a URL without an extension costs a "HEAD" request,
// which blocks the caller for up to ten seconds of silence. No failure is reported here: the URL then counts
// as a file, and its download says why. Any thread.
#pragma once

#include <QString>

#include "classify/ExtensionMap.h"
#include "platform/HTTPReadStream.h"

namespace quillforth::classify {

enum class ClassificationReason {
  notAURL,
  extensionKnown,      ///< `type` is the table's
  extensionUnknown,    ///< not in the table, letter case counts
  typeUnreadable,      ///< the table's type is not valid UTF-8
  serverAnswered,      ///< `type` is the answer's Content-Type
  serverGaveNoType,    ///< an answer without a Content-Type
  serverDidNotAnswer,  ///< no connection, silence, an error, or a scheme that cannot be asked
};

struct Classification {
  bool isPage = false;
  ClassificationReason reason = ClassificationReason::notAURL;
  QString extension;  ///< the key that was looked up, with its "."; empty when the server was asked
  QString type;       ///< as found, control characters included; empty when there is none
};

/// `isWebPageURL` with its reasons.
[[nodiscard]] Classification classifyURL(const QString& url, const CExtensionMap& map,
                                         platform::HTTPReadStreamFactory& streams);

[[nodiscard]] bool isWebPageURL(const QString& url, const CExtensionMap& map,
                                platform::HTTPReadStreamFactory& streams);

/// Whether the server calls it "text/…", whatever its status code. False on every failure.
[[nodiscard]] bool probeURLIsText(const QString& url, platform::HTTPReadStreamFactory& streams);

}  // namespace quillforth::classify
