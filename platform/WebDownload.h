// SPDX-License-Identifier: MIT
//
// Fetches one URL into a file, and tells a delegate how it goes.
//
// Everything here is called, and calls back, on the main thread; callbacks come from the main loop, never
// from inside a call of this interface. The order for one download is
//
//   downloadDidBegin
//   downloadWindowForAuthenticationSheet          as often as a server or proxy asks
//   downloadDidReceiveResponse
//   downloadShouldDecodeSourceDataOfMIMEType      only for a body that arrives encoded
//   downloadDecideDestinationWithSuggestedFilename
//   downloadDidCreateDestination                  again if the final name had to differ
//   downloadDidReceiveDataOfLength                any number of times, each for what came in a short while
//   downloadDidFinish
//
// At any point downloadDidFailWithError may come instead of the rest. Nothing follows after either end, or
// after cancel.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "net/URL.h"
#include "platform/TransferFailure.h"

namespace quillforth::platform {

/// The login that a server (401) or proxy (407) asks for (RFC 9110, section 11).
struct AuthenticationChallenge {
  QString host;    ///< with its port
  QString realm;   ///< as the server spells it; may be empty
  QString scheme;  ///< "Basic" or "Digest"
  bool isProxy = false;
  int previousFailureCount = 0;  ///< answers already refused
};

struct Credential {
  QString user;
  QString password;
};

/// A window that can ask its user for a name and a password.
class AuthenticationSheetParent {
 public:
  virtual ~AuthenticationSheetParent() = default;
  /// Asks, and calls `answer` exactly once, on the main thread, later or at once. Nothing means
  /// cancelled.
  virtual void beginAuthenticationSheet(const AuthenticationChallenge& challenge,
                                        std::function<void(std::optional<Credential>)> answer) = 0;
};

struct WebDownloadRequest {
  URL url;
  /// The URL of the page that it was found on. The server learns as much of it as a browser would tell
  /// (`Referer`; RFC 9110, section 10.1.3), and never credentials. Null: it learns nothing.
  QString referrer{};
};

struct URLResponse {
  std::int64_t expectedContentLength = -1;  ///< bytes; -1 when unknown
  QString MIMEType;                         ///< lower case, without parameters; may be empty
};

struct DownloadError {
  /// For people, ends in "."; null when there is none. Never holds credentials.
  QString localizedDescription;
  QString failingURLString;  ///< without credentials; null when unknown
  TransferFailure cause{};
};

class WebDownload;

class WebDownloadDelegate {
 public:
  virtual ~WebDownloadDelegate() = default;
  virtual void downloadDidBegin(WebDownload& download) = 0;
  virtual void downloadDidReceiveResponse(WebDownload& download, const URLResponse& response) = 0;
  /// The delegate calls `setDestinationAllowOverwrite` on `download`, or else the download fails.
  /// `filename` is one safe path component of at most 255 bytes in UTF-8.
  virtual void downloadDecideDestinationWithSuggestedFilename(WebDownload& download,
                                                              const QString& filename) = 0;
  /// When it gives null, the download fails.
  virtual AuthenticationSheetParent* downloadWindowForAuthenticationSheet(WebDownload& download) = 0;
  virtual bool downloadShouldDecodeSourceDataOfMIMEType(WebDownload& download, const QString& mimeType) = 0;
  /// `path` is where the complete file will appear; there is nothing under that name before the end.
  virtual void downloadDidCreateDestination(WebDownload& download, const QString& path) = 0;
  virtual void downloadDidReceiveDataOfLength(WebDownload& download, std::uint64_t length) = 0;
  virtual void downloadDidFinish(WebDownload& download) = 0;
  virtual void downloadDidFailWithError(WebDownload& download, const DownloadError& error) = 0;
};

/// One download in flight. It keeps itself alive to its end: letting go of it does not cancel it.
class WebDownload {
 public:
  virtual ~WebDownload() = default;
  [[nodiscard]] virtual const URL& requestURL() const = 0;
  /// Counts only inside `downloadDecideDestinationWithSuggestedFilename`, and there the last call.
  /// `path`: absolute, of the wanted file. Without `allowOverwrite` a free name is picked: "name-1.ext",
  /// "name-2.ext", ….
  virtual void setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) = 0;
  /// No callback follows. A file that has its final name already stays. Otherwise no file is left behind,
  /// hidden or not.
  virtual void cancel() = 0;
};

/// Starts downloads. Its destructor cancels what is still in flight, and waits until no partial file is left.
class WebDownloadService {
 public:
  virtual ~WebDownloadService() = default;
  /// Never fails here. A fault of the URL is reported to `delegate`, which must outlive the download.
  [[nodiscard]] virtual std::shared_ptr<WebDownload> startDownload(const WebDownloadRequest& request,
                                                                   WebDownloadDelegate& delegate) = 0;
  /// Says what is to be started next, in this order, into `folder` (an absolute path; null: unknown). While a
  /// download is under way, the service may ask for these already. Nobody sees anything of it. What is no
  /// longer named is dropped. Each `startDownload` takes its request out of these.
  virtual void expectDownloads(const std::vector<WebDownloadRequest>& requests, const QString& folder) = 0;
  /// To be called when the program ends, but not from inside a callback. A download whose file has its final
  /// name makes its last callbacks from in here. All others are cancelled, and those that are started from
  /// now on never begin.
  virtual void end() = 0;
};

}  // namespace quillforth::platform
