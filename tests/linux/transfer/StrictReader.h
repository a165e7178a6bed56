// SPDX-License-Identifier: MIT
//
// One answer, read from its bytes alone as RFC 9112 has it. A line may end in LF (section 2.2), a field may
// be folded (section 5.2), and an answer may say "chunked" and a length (section 6.3). Nothing else is
// forgiven where it decides on the length of a body.
#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/BoundedText.h"

namespace quillforth::tests {

class StrictReader {
 public:
  /// `isHead`: the answer to "HEAD". `isReset`: the connection did not end in order.
  StrictReader(std::string_view bytes, bool isHead, bool isReset) : rest_(bytes) {
    do {
      fields_.clear();
      if (!readHead()) return;
    } while (status_ < 200 && status_ != 101);
    if (status_ != 101) readBody(isHead, isReset);
  }

  /// All of it is there, and can be read only so.
  [[nodiscard]] bool isWhole() const { return isWhole_; }
  /// Nothing had to be forgiven.
  [[nodiscard]] bool isPlain() const { return isPlain_; }
  /// Nothing stands behind it.
  [[nodiscard]] bool isAlone() const { return rest_.empty(); }
  [[nodiscard]] int status() const { return status_; }
  [[nodiscard]] const std::string& body() const { return body_; }
  /// Of the first such field of the last head.
  [[nodiscard]] std::string value(std::string_view name) const {
    const std::vector<std::string> all = values(name);
    return all.empty() ? std::string() : all[0];
  }

 private:
  using Line = std::optional<std::string_view>;

  // Without its end; nothing when it has none.
  Line readLine() {
    const std::size_t end = rest_.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    isPlain_ = isPlain_ && line.ends_with('\r');
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
  }
  static bool isDigit(char c) { return c >= '0' && c <= '9'; }
  static std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? ""
                                           : text.substr(first, text.find_last_not_of(" \t") - first + 1);
  }

  bool readStatus(std::string_view line) {
    const bool isForm = line.size() >= 12 &&
                        (line.starts_with("HTTP/1.0 ") || line.starts_with("HTTP/1.1 ")) && line[9] != '0' &&
                        isDigit(line[9]) && isDigit(line[10]) && isDigit(line[11]) &&
                        (line.size() == 12 || !isDigit(line[12]));
    if (!isForm || line.find('\0') != std::string_view::npos) return false;
    isPlain_ = isPlain_ && line.size() > 12 && line[12] == ' ' && line[7] == '1' && isVisible(line);
    status_ = (line[9] - '0') * 100 + (line[10] - '0') * 10 + line[11] - '0';
    return true;
  }
  static bool isVisible(std::string_view text) {
    for (const char c : text) {
      if ((c >= 0 && c < ' ' && c != '\t') || c == 0x7f) return false;
    }
    return true;
  }
  static bool isToken(std::string_view text) {
    return !text.empty() && text.find_first_not_of(
                                "!#$%&'*+-.^_`|~0123456789abcdefghijklmnopqrstuvwxyz"
                                "ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string_view::npos;
  }

  bool readHead() {
    Line line = readLine();
    if (!line || !readStatus(*line)) return false;
    for (line = readLine(); line && !line->empty(); line = readLine()) {
      if (!readField(*line)) return false;
    }
    return line.has_value();
  }
  bool readField(std::string_view line) {
    isPlain_ = isPlain_ && isVisible(line);
    if (line.front() == ' ' || line.front() == '\t') {
      isPlain_ = false;
      if (fields_.empty()) return false;
      isFramed_ = isFramed_ && !isFraming(fields_.back().first);
      std::string& value = fields_.back().second;
      value.append(value.empty() ? "" : " ").append(trimmed(line));
      return true;
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || line.find('\0') != std::string_view::npos) return false;
    const std::string_view name = line.substr(0, colon);
    isPlain_ = isPlain_ && isToken(name);
    const bool isOdd = trimmed(name) != name || line.find('\r') != std::string_view::npos;
    if (isFraming(trimmed(name))) isFramed_ = isFramed_ && !isOdd;
    fields_.emplace_back(name, trimmed(line.substr(colon + 1)));
    return true;
  }
  static bool isFraming(std::string_view name) {
    return common::EqualsNoCase(name, "Content-Length") || common::EqualsNoCase(name, "Transfer-Encoding");
  }
  [[nodiscard]] std::vector<std::string> values(std::string_view name) const {
    std::vector<std::string> all;
    for (const auto& [each, value] : fields_) {
      if (common::EqualsNoCase(each, name)) all.push_back(value);
    }
    return all;
  }

  // Section 6.3, in its order.
  void readBody(bool isHead, bool isReset) {
    const std::vector<std::string> codings = values("Transfer-Encoding"), lengths = values("Content-Length");
    if (!codings.empty() && !lengths.empty()) isPlain_ = false;
    isWhole_ = isHead || status_ == 204 || status_ == 304;
    if (isHead) return;
    if (!isFramed_ ||
        (!codings.empty() && (codings.size() > 1 || !common::EqualsNoCase(codings[0], "chunked")))) {
      isWhole_ = false;
    } else if (isWhole_) {
      isPlain_ = isPlain_ && codings.empty() && lengths.empty();
    } else if (!codings.empty()) {
      isWhole_ = readChunks();
    } else if (!lengths.empty()) {
      isWhole_ = readLength(lengths);
    } else {
      body_ = std::exchange(rest_, {});
      isWhole_ = !isReset;
    }
  }
  bool readLength(const std::vector<std::string>& lengths) {
    std::optional<std::int64_t> agreed;
    for (const std::string& field : lengths) {
      for (std::size_t start = 0; start <= field.size();) {
        const std::size_t end = std::min(field.find(',', start), field.size());
        const std::string_view text = trimmed(std::string_view(field).substr(start, end - start));
        std::int64_t length = -1;
        const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), length);
        const bool isNumber = error == std::errc() && stop == text.data() + text.size() && isDigit(text[0]);
        if (!isNumber || (agreed && *agreed != length)) return false;
        if (agreed) isPlain_ = false;
        agreed = length;
        start = end + 1;
      }
    }
    body_ = rest_.substr(0, static_cast<std::size_t>(*agreed));
    rest_.remove_prefix(body_.size());
    return static_cast<std::int64_t>(body_.size()) == *agreed;
  }
  bool readChunks() {
    for (;;) {
      const Line line = readLine();
      if (!line) return false;
      std::uint64_t length = 0;
      const auto [stop, error] = std::from_chars(line->data(), line->data() + line->size(), length, 16);
      const std::string_view extension(stop, static_cast<std::size_t>(line->data() + line->size() - stop));
      if (error != std::errc()) return false;
      if (!extension.empty() || line->size() > 16) isPlain_ = false;
      if (length == 0) break;
      if (length > rest_.size()) return false;
      body_ += rest_.substr(0, length);
      rest_.remove_prefix(length);
      const Line end = readLine();
      if (!end || end->find_first_not_of('\r') != std::string_view::npos) return false;
      isPlain_ = isPlain_ && end->empty();
    }
    Line line = readLine();
    for (; line && !line->empty(); line = readLine()) isPlain_ = false;
    return line.has_value();
  }

  std::string_view rest_;
  std::vector<std::pair<std::string, std::string>> fields_;
  std::string body_;
  int status_ = 0;
  bool isFramed_ = true, isPlain_ = true, isWhole_ = false;
};

}  // namespace quillforth::tests
