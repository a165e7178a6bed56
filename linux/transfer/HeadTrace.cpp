// SPDX-License-Identifier: MIT

#include "linux/transfer/HeadTrace.h"

#include <algorithm>
#include <array>

#include "common/BoundedText.h"
#include "net/URL.h"

namespace quillforth::platform {

namespace {

constexpr std::array<std::string_view, 5> kSecretFields = {"Authorization", "Proxy-Authorization", "Cookie",
                                                           "Set-Cookie", "Authentication-Info"};

bool IsSecret(std::string_view name, const TransferSettings& settings) {
  const auto isNamed = [name](std::string_view other) { return common::EqualsNoCase(name, other); };
  return std::ranges::any_of(kSecretFields, isNamed) ||
         std::ranges::any_of(settings.headers, isNamed, &HeaderField::name);
}

int Trace(CURL* /*handle*/, curl_infotype type, char* data, std::size_t size, void* settings) {
  const auto& known = *static_cast<const TransferSettings*>(settings);
  if (type != CURLINFO_HEADER_OUT && type != CURLINFO_HEADER_IN) return 0;
  const char* direction = type == CURLINFO_HEADER_OUT ? "> " : "< ";
  std::string_view text(data, size);
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(std::min(text.find('\n', line.size()), text.size() - 1) + 1);
    if (!line.empty()) known.trace(direction + ShownHeadLine(line, known));
  }
  return 0;
}

}  // namespace

std::string ShownHeadLine(std::string_view line, const TransferSettings& settings) {
  const std::size_t colon = line.find(':');
  const std::string_view name = line.substr(0, colon);
  if (common::StartsWithNoCase(line, "PASS ") || common::StartsWithNoCase(line, "USER ")) {  // FTP
    return std::string(line.substr(0, 5)) + "(not shown)";
  }
  if (colon != std::string_view::npos && IsSecret(name, settings)) return std::string(name) + ": (not shown)";
  const QString text = QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()));
  if (!common::EqualsNoCase(name, "Location")) return WithoutCredentialsInside(text).toStdString();
  const QString url = WithoutCredentials(text.sliced(text.indexOf(u':') + 1).trimmed());
  return std::string(name) + ": " + WithoutCredentialsInside(url).toStdString();
}

void TraceHeads(CURL* handle, const TransferSettings& settings) {
  curl_easy_setopt(handle, CURLOPT_DEBUGFUNCTION, &Trace);
  curl_easy_setopt(handle, CURLOPT_DEBUGDATA, &settings);
  curl_easy_setopt(handle, CURLOPT_VERBOSE, 1L);
}

}  // namespace quillforth::platform
