// SPDX-License-Identifier: MIT

#include "linux/transfer/CurlSupport.h"

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

}  // namespace quillforth::platform
