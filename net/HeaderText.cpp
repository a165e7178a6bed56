// SPDX-License-Identifier: MIT

#include "net/HeaderText.h"

#include <algorithm>

#include "net/UTF8.h"

namespace quillforth::platform {

namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

QString TextFromBytes(std::string_view bytes) {
  std::optional<QString> text = TextFromUTF8(bytes);
  return text ? *std::move(text) : QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

std::string PercentDecoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool complete = text[i] == '%' && i + 2 < text.size();
    const int high = complete ? HexValue(text[i + 1]) : -1;
    const int low = complete ? HexValue(text[i + 2]) : -1;
    const bool escape = high >= 0 && low >= 0;
    decoded.push_back(escape ? static_cast<char>(high * 16 + low) : text[i]);
    if (escape) i += 2;
  }
  return decoded;
}

std::string_view TrimmedBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<HeaderParameter> ParameterScanner::next() {
  const char delimiters[] = {'=', separator_};
  while (!rest_.empty()) {
    const std::size_t end = std::min(rest_.find_first_of({delimiters, 2}), rest_.size());
    HeaderParameter parameter{.name = TrimmedBlanks(rest_.substr(0, end)), .value = {}};
    parameter.hasValue = end < rest_.size() && rest_[end] == '=';
    rest_.remove_prefix(end);
    if (parameter.hasValue) {
      rest_.remove_prefix(1);
      parameter.value = takeValue();
    }
    skipPastSeparator();
    if (parameter.hasValue || !parameter.name.empty()) return parameter;
  }
  return std::nullopt;
}

std::string ParameterScanner::takeValue() {
  rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size()));
  if (!rest_.starts_with('"')) return std::string(TrimmedBlanks(rest_.substr(0, rest_.find(separator_))));
  std::string value;
  std::size_t i = 1;
  for (; i < rest_.size() && rest_[i] != '"'; ++i) {
    const bool escape =
        rest_[i] == '\\' && i + 1 < rest_.size() && (rest_[i + 1] == '"' || rest_[i + 1] == '\\');
    if (escape) ++i;
    value.push_back(rest_[i]);
  }
  rest_.remove_prefix(std::min(i + 1, rest_.size()));
  return value;
}

void ParameterScanner::skipPastSeparator() {
  const std::size_t end = rest_.find(separator_);
  rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
}

}  // namespace quillforth::platform
