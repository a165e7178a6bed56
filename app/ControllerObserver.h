// SPDX-License-Identifier: MIT
//
// What the controller says of its work.
//
// Outlets show where the work stands. A front end that must tell what becomes of every URL hears it here.
// Main thread, from inside the controller, which must not be called from there.
#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/LocalizedStrings.h"

namespace quillforth::app {

class UrlQueue;

/// Why a text that makes no URL is not taken.
[[nodiscard]] inline QString InvalidURLReason() {
  return LOCALIZED("This is not a valid URL.");
}

/// What is known of a download in flight.
struct DownloadProgress {
  QString url;  ///< without credentials
  QString path;
  std::uint64_t received = 0;
  std::int64_t expected = -1;
  QString text = {};  ///< the URL as it was given, credentials included
  QString page = {};  ///< URL of the page that it was found on; null: none
};

class ControllerObserver {
 public:
  virtual ~ControllerObserver() = default;
  /// `linkCount` links of the page have joined the queue, whose head is about to be started.
  virtual void pageWasQueued(const QString& /*url*/, std::size_t /*linkCount*/) {}
  /// `reason`: for people, ends in "."; null when the user or the end of the program has interrupted the
  /// load.
  virtual void pageDidNotLoad(const QString& /*url*/, const QString& /*reason*/) {}
  /// `downloadFile` was given a text that makes no URL; the queue waits for `tryAgain`.
  virtual void urlWasRefused(const QString& /*text*/) {}
  /// There was no connection, and the URL is lost.
  virtual void urlWasLost(const QString& /*url*/) {}
  /// The user has taken these out of the queue. There is at least one.
  virtual void urlsWereDiscarded(const std::shared_ptr<const UrlQueue>& /*urls*/) {}
  /// The next five are called before the controller acts on what has happened.
  virtual void downloadBegan(const DownloadProgress& /*progress*/) {}
  virtual void downloadReceived(const DownloadProgress& /*progress*/) {}
  virtual void downloadFinished(const DownloadProgress& /*progress*/) {}
  virtual void downloadFailed(const DownloadProgress& /*progress*/, const QString& /*reason*/) {}
  /// By the user.
  virtual void downloadCancelled(const DownloadProgress& /*progress*/) {}
  /// A download has begun, ended or been cancelled, and the controller has acted on it.
  virtual void controllerMovedOn() {}
};

}  // namespace quillforth::app
