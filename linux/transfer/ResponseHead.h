// SPDX-License-Identifier: MIT
//
// The head of an HTTP answer: what it says, whether that is possible, and what it means for the body.
//
// The lines are collected here as they come. libcurl goes through all lines to look a field up, and it
// accepts a head that is cut off, and much that is not a head. One thread at a time.
#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "linux/transfer/TransferText.h"
#include "platform/HTTPReadStream.h"

namespace quillforth::platform {

class ResponseHead {
 public:
  /// The most bytes that are kept of one request's lines, those of interim answers included.
  static constexpr std::size_t kMaxLength = std::size_t{256} * 1024;

  /// Takes the next line, with its end. A status line begins a new head. Other lines after a head's blank
  /// line (a trailer) are only counted.
  void addLine(std::string_view line);
  /// Only counts the line, which is not HTTP.
  void passOver(std::string_view line) { length_ += line.size(); }
  /// The head so far came from a proxy. The server's own head follows.
  void expectAnother() { *this = ResponseHead(length_); }

  ResponseHead() = default;

  /// Whether a head has begun, and its blank line has not come.
  [[nodiscard]] bool isOpen() const { return isInside_; }
  /// Whether the head of a final answer is complete.
  [[nodiscard]] bool isComplete() const { return !isInside_ && status_ >= 200; }
  /// What is wrong with one of the lines so far.
  [[nodiscard]] OutcomeKind lineFault() const;
  /// What is wrong with a complete head. `hasBody`: also with the fields that say how long the body is.
  /// Readers that disagree about it take a part of it for the whole, or what follows it for the next answer
  /// (RFC 9112, section 6).
  [[nodiscard]] OutcomeKind fault(bool hasBody) const;

  /// The status of the last head; 0 when there was none. All below is about the last head, too.
  [[nodiscard]] int status() const { return status_; }
  [[nodiscard]] const HTTPResponseHeader& header() const { return header_; }
  [[nodiscard]] std::string_view firstValue(std::string_view name) const;
  /// Where the answer redirects to; empty when it does not.
  [[nodiscard]] std::string_view location() const;
  /// The length of the body that is announced, in bytes; -1 when none is. Nothing when the announcement is no
  /// number, does not fit 63 bits, or is two numbers that differ (RFC 9112, section 6.3).
  [[nodiscard]] std::optional<std::int64_t> announcedLength() const;
  /// Whether the body ends where the connection does.
  [[nodiscard]] bool endsWithConnection() const;

 private:
  explicit ResponseHead(std::size_t length) : length_(length) {}

  void begin(std::string_view line);
  void addField(std::string_view line);
  [[nodiscard]] bool hasTwoLocations() const;
  [[nodiscard]] bool hasPlainFraming() const;

  HTTPResponseHeader header_;
  std::size_t length_ = 0;
  int status_ = 0;
  bool isInside_ = false;
  bool isMalformed_ = false;
  bool isFraming_ = false;  // the last field says how long the body is
  bool hasBrokenFraming_ = false;
};

/// The MIME type, lower case, without parameters; empty when there is none.
[[nodiscard]] std::string MIMETypeOf(const ResponseHead& head);

/// Whether the body has a content coding (RFC 9110, section 8.4).
[[nodiscard]] bool HasContentCoding(const ResponseHead& head);

/// Whether `url`, of FTP, names a folder.
[[nodiscard]] bool IsFTPFolder(std::string_view url);

/// The safe file name that goes with an answer to `url`.
[[nodiscard]] QString FilenameOf(const ResponseHead& head, std::string_view url, const std::string& mimeType);

}  // namespace quillforth::platform
