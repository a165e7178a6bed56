// SPDX-License-Identifier: MIT
//
// What an answer says before its body, and what follows from it for the body.
//
// The lines are collected here as they come: to look a field up, libcurl goes through all of them, and it
// takes a head that is cut off for a whole one. One thread at a time.
#pragma once

#include <curl/curl.h>

#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/HTTPReadStream.h"

namespace quillforth::platform {

class ResponseHead {
 public:
  /// Bytes of all lines of one request's answer, interim ones included; more are not kept.
  static constexpr std::size_t kMaxLength = std::size_t{256} * 1024;

  /// Takes the next line, with its end. A status line begins a new head; what follows a head's blank line and
  /// is none (a trailer, or what an FTP server says) only counts.
  void addLine(std::string_view line);

  /// Bytes of all lines so far.
  [[nodiscard]] std::size_t length() const { return length_; }
  [[nodiscard]] bool isTooLong() const { return length_ > kMaxLength; }
  /// A status line has come, and no blank line yet.
  [[nodiscard]] bool isInside() const { return isInside_; }
  /// A field says how long the body is, but so that readers disagree: with a blank before its colon, with a
  /// carriage return in it, or folded (RFC 9112, sections 2.2, 5.1 and 5.2).
  [[nodiscard]] bool hasBrokenFraming() const { return hasBrokenFraming_; }
  /// Of the last head, as everything below; 0 when there was none of HTTP.
  [[nodiscard]] int status() const { return status_; }
  [[nodiscard]] const HTTPResponseHeader& header() const { return header_; }
  [[nodiscard]] std::string_view firstValue(std::string_view name) const;

 private:
  void addField(std::string_view line);

  HTTPResponseHeader header_;
  std::size_t length_ = 0;
  int status_ = 0;
  bool isInside_ = false;
  bool isFraming_ = false;  // the last field says how long the body is
  bool hasBrokenFraming_ = false;
};

/// Whether the body has a transfer coding that cannot be undone here, so that nobody can tell whether it is
/// whole; "identity" is none (RFC 9112, sections 6.1 and 6.3).
[[nodiscard]] bool HasUnknownTransferCoding(const ResponseHead& head);

/// The number of bytes that the answer announces, -1 when it announces none. Nothing when what it says cannot
/// be: no number, one that 63 bits cannot hold, or two that differ (RFC 9112, section 6.3).
[[nodiscard]] std::optional<std::int64_t> AnnouncedLength(const ResponseHead& head);

/// The MIME type, lower case, without parameters; empty when there is none.
[[nodiscard]] std::string MIMETypeOf(const ResponseHead& head);

/// Whether the body has a content coding (RFC 9110, section 8.4).
[[nodiscard]] bool HasContentCoding(const ResponseHead& head);

/// Whether the last answer of `handle` was not of HTTP.
[[nodiscard]] bool IsFTP(CURL* handle);

/// Whether `url`, of FTP, names a folder.
[[nodiscard]] bool IsFTPFolder(std::string_view url);

/// The safe file name that goes with an answer to `url`.
[[nodiscard]] QString FilenameOf(const ResponseHead& head, std::string_view url, const std::string& mimeType);

}  // namespace quillforth::platform
