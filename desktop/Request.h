// SPDX-License-Identifier: MIT
//
// What other programs, and further starts of this one, ask of the one that runs.
//
// Whatever way a request comes in, it has no Fault: its sizes are bounded, and something in it can be taken.
// Pure values; any thread.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace quillforth::desktop {

struct Request {
  enum class Kind {
    activate,           ///< bring the window forward; no texts
    open,               ///< URIs: files become one open-documents event, the others are taken as drops are
    getURL,             ///< one URL, as a get-URL event
    downloadText,       ///< one text, as from the Services menu
    downloadSelection,  ///< the text that is selected on the screen, as from the Services menu; no texts
  };
  static constexpr qsizetype kMaxTextLength = 65'536;  ///< in UTF-16 units
  static constexpr qsizetype kMaxSize = 8 << 20;       ///< of all texts: their lengths, and for each
  static constexpr qsizetype kTextSize = 64;           ///< so much more

  Kind kind = Kind::activate;
  QStringList texts = {};
  /// What the desktop handed to whoever asks, so that the window may come forward: an XDG activation token,
  /// or the identifier of a startup notification. Empty: none.
  QString activationToken = {};
  /// Of what one start of the program hands to another: the same request may come twice, and one that comes
  /// after its deadline is not wanted any more, because its sender has given up.
  struct HandOver {
    QString identity;           ///< empty: this is none
    std::int64_t deadline = 0;  ///< in milliseconds of CLOCK_MONOTONIC, which all processes share
  };
  HandOver handOver = {};
};

/// A new identity, and a deadline so far from now.
[[nodiscard]] Request::HandOver NewHandOver(std::chrono::milliseconds patience);
[[nodiscard]] bool IsLate(const Request::HandOver& handOver);

/// The member "activation-token", or else "desktop-startup-id", where it is one; too long a text is none.
[[nodiscard]] QString ActivationTokenIn(const QVariantMap& platformData);

/// Of the scheme "file", which the other URIs are not taken with.
[[nodiscard]] bool IsFileURI(const QString& uri);
/// A file's on this machine, there or not, or one that can be downloaded from; not too long.
[[nodiscard]] bool IsUsableURI(const QString& uri);
/// What is told of a text that is none.
inline constexpr const char* kUnusableURI = "neither a file nor an http, https or ftp URL";
/// kMaxSize holds for this.
[[nodiscard]] qsizetype SizeOf(const QStringList& texts);

/// What is wrong with the request, for whoever sent it; null when nothing is.
[[nodiscard]] QString Fault(const Request& request);

/// One line of JSON without its end, for the way from one start of the program to another.
[[nodiscard]] QByteArray LineOfRequest(const Request& request);
/// Nothing when the line is no request, or a faulty one.
[[nodiscard]] std::optional<Request> RequestInLine(const QByteArray& line);
/// Longer than any line of a request.
inline constexpr qsizetype kMaxRequestLine = 8 * Request::kMaxSize;

/// The URI that an argument on the command line means: a file's where it names one that is there, in the
/// working folder or anywhere, and otherwise the argument itself. Nothing when that cannot be downloaded
/// from.
[[nodiscard]] std::optional<QString> URIOfArgument(const std::string& argument);

/// Does what is asked for. Main thread.
class RequestHandler {
 public:
  enum class Answer { taken, tooBusy, isLate, isQuitting };

  virtual ~RequestHandler() = default;
  /// Returns at once; the work follows in its turn. Unless it is taken, nothing of `request` is done.
  [[nodiscard]] virtual Answer take(const Request& request) = 0;
};

}  // namespace quillforth::desktop
