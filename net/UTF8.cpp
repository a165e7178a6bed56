// SPDX-License-Identifier: MIT

#include "net/UTF8.h"

#include <QStringDecoder>

namespace quillforth::platform {

std::optional<QString> TextFromUTF8(QByteArrayView bytes) {
  QStringDecoder decoder(QStringConverter::Utf8,
                         QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
  QString text = decoder(bytes);
  if (decoder.hasError()) return std::nullopt;
  return text.isNull() ? QStringLiteral("") : text;
}

std::optional<QByteArray> UTF8OfText(QStringView text) {
  return text.isValidUtf16() ? std::optional(text.toUtf8()) : std::nullopt;
}

}  // namespace quillforth::platform
