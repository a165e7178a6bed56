// SPDX-License-Identifier: MIT
//
// What all fuzz targets share. A target is one file, which includes this and defines `Check`.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace quillforth::fuzz {

/// Looks whether all holds that must hold for this input.
void Check(std::string_view input);

/// Ends the process unless it holds, which counts as a finding.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "this does not hold: %s\n", what);
  std::abort();
}

/// The pieces of an input that is several texts, at most `count`; there are as many always.
inline std::vector<std::string> Pieces(std::string_view input, std::size_t count, char separator = '\x1e') {
  std::vector<std::string> pieces(count);
  for (std::size_t i = 0; i < count && !input.empty(); ++i) {
    pieces[i] = input.substr(0, input.find(separator));
    input.remove_prefix(std::min(pieces[i].size() + 1, input.size()));
  }
  return pieces;
}

/// UTF-8 as a text; an odd first byte makes it UTF-16, in which surrogates may be alone.
inline QString Text(const std::string& bytes) {
  if (bytes.empty() || bytes[0] % 2 == 0 || bytes[0] >= ' ') return QString::fromStdString(bytes);
  QString text;
  for (std::size_t i = 2; i < bytes.size(); i += 2)
    text += QChar(static_cast<char16_t>(static_cast<unsigned char>(bytes[i - 1]) << 8 |
                                        static_cast<unsigned char>(bytes[i])));
  return text;
}

/// A folder for as long as the process lives, which is also its home.
inline const QTemporaryDir& Home() {
  static const QTemporaryDir home;
  static const bool isSet =
      qputenv("HOME", home.path().toLocal8Bit()) && qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit()) &&
      qputenv("XDG_DATA_HOME", home.path().toLocal8Bit()) && qputenv("XDG_DATA_DIRS", "/nowhere");
  Require(home.isValid() && isSet, "there is a folder to work in");
  return home;
}

}  // namespace quillforth::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quillforth::fuzz::Check({reinterpret_cast<const char*>(data), size});
  return 0;
}
