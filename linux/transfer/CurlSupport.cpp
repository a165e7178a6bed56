// SPDX-License-Identifier: MIT

#include "linux/transfer/CurlSupport.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "common/BoundedText.h"

namespace quillforth::platform {

namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

}  // namespace

bool HeaderField::tellsWhoAsks() const {
  return common::EqualsNoCase(name, "Authorization") || common::EqualsNoCase(name, "Cookie") ||
         common::EqualsNoCase(name, "Proxy-Authorization");
}

TransferSettings SettingsFromEnvironment() {
  TransferSettings settings;
  settings.caCertificateFile = Environment("SSL_CERT_FILE");
  settings.caCertificateFolder = Environment("SSL_CERT_DIR");
  return settings;
}

// A server that runs scripts has the field "Proxy:" of its requests in HTTP_PROXY.
std::string ProxyFromEnvironment(const std::string& scheme) {
  std::string upper = scheme + "_proxy";
  std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return std::toupper(c); });
  const std::string own = Environment((scheme + "_proxy").c_str());
  for (const std::string& proxy : {own, scheme == "http" ? "" : Environment(upper.c_str()),
                                   Environment("all_proxy"), Environment("ALL_PROXY")}) {
    if (!proxy.empty()) return proxy;
  }
  return {};
}

}  // namespace quillforth::platform
