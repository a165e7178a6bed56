// SPDX-License-Identifier: MIT
//
// Reads what servers write into header fields: texts of unknown encoding, and lists of "name=value".
//
// Servers follow the grammar loosely, so this one takes what it can: blanks in unquoted values, a missing
// closing quote, raw bytes of any encoding. Pure; safe from any thread.
#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>

namespace quillforth::platform {

/// What the program calls itself to every server.
inline constexpr const char* kUserAgent = "Quillforth/1.0";

/// `bytes` as UTF-8 when they are valid UTF-8, else as ISO Latin-1.
[[nodiscard]] QString TextFromBytes(std::string_view bytes);

/// `text` with each well-formed "%XX" replaced by its byte; what is not well-formed stays.
[[nodiscard]] std::string PercentDecoded(std::string_view text);

/// `text` without blanks and tabs at its ends.
[[nodiscard]] std::string_view TrimmedBlanks(std::string_view text);

struct HeaderParameter {
  std::string_view name;  ///< what stands before the "=", trimmed; the whole piece without a "="
  bool hasValue = false;
  std::string value;  ///< without quotes; an unquoted one is trimmed
};

/// Walks the pieces of a field value, which `separator` (";" or ",") divides outside quotes.
///
/// In quotes a backslash escapes only a quote or a backslash (RFC 9110, section 5.6.4, lets it escape
/// anything, but file names with the backslashes of other systems are the more frequent case).
class ParameterScanner {
 public:
  /// `field` must outlive the scanner and what it returns.
  ParameterScanner(std::string_view field, char separator) : rest_(field), separator_(separator) {}
  /// Nothing at the end. Empty pieces are passed over.
  [[nodiscard]] std::optional<HeaderParameter> next();

 private:
  std::string takeValue();
  void skipPastSeparator();

  std::string_view rest_;
  char separator_;
};

}  // namespace quillforth::platform
