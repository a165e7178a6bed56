// SPDX-License-Identifier: MIT

#include "appleevents/HFSPath.h"

#include <QByteArrayView>
#include <algorithm>

#include "net/UTF8.h"

namespace quillforth::platform {

namespace {

constexpr char16_t kStrayBase = 0xDC00;
constexpr char16_t kFirstStray = 0xDC80;
constexpr char16_t kLastStray = 0xDCFF;

// Bytes in the sequence that `lead` may begin, by its high bits alone.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0) return 0;
  if (lead < 0xE0) return 2;
  return lead < 0xF0 ? 3 : 4;
}

// How many bytes at the beginning of `bytes` are one valid character; 0 for none.
std::size_t ValidCharacterLength(std::string_view bytes) {
  const std::size_t length = SequenceLength(static_cast<unsigned char>(bytes.front()));
  if (length == 0 || length > bytes.size()) return 0;
  return QByteArrayView(bytes.substr(0, length)).isValidUtf8() ? length : 0;
}

std::size_t ValidPrefixLength(std::string_view bytes) {
  if (QByteArrayView(bytes).isValidUtf8()) return bytes.size();
  std::size_t length = 0;
  while (length < bytes.size()) {
    const std::size_t character = ValidCharacterLength(bytes.substr(length));
    if (character == 0) break;
    length += character;
  }
  return length;
}

// How many units at the beginning of `text` are whole characters.
qsizetype WholeCharactersLength(QStringView text) {
  qsizetype length = 0;
  while (length < text.size()) {
    if (!text[length].isSurrogate()) {
      ++length;
    } else if (text[length].isHighSurrogate() && length + 1 < text.size() &&
               text[length + 1].isLowSurrogate()) {
      length += 2;
    } else {
      break;
    }
  }
  return length;
}

}  // namespace

QString LosslessText(std::string_view bytes) {
  QString text = QStringLiteral("");
  while (!bytes.empty()) {
    const std::size_t valid = ValidPrefixLength(bytes);
    text += *TextFromUTF8(bytes.substr(0, valid));
    bytes.remove_prefix(valid);
    if (bytes.empty()) break;
    text += QChar(static_cast<char16_t>(kStrayBase + static_cast<unsigned char>(bytes.front())));
    bytes.remove_prefix(1);
  }
  return text;
}

std::optional<std::string> BytesOfLosslessText(QStringView text) {
  std::string bytes;
  while (!text.isEmpty()) {
    const qsizetype whole = WholeCharactersLength(text);
    bytes += text.first(whole).toUtf8().toStdString();
    text = text.sliced(whole);
    if (text.isEmpty()) break;
    const char16_t stray = text.front().unicode();
    if (stray < kFirstStray || stray > kLastStray) return std::nullopt;
    bytes += static_cast<char>(stray - kStrayBase);
    text = text.sliced(1);
  }
  return bytes;
}

namespace {

constexpr std::string_view kVolume = "Linux";

// The separator of one form may stand in a name of the other form, so the two are exchanged. Neither occurs
// inside another character, so a whole path is changed at once.
template <typename Text>
Text WithSeparatorsSwapped(Text text) {
  constexpr typename Text::value_type slash(u'/');
  constexpr typename Text::value_type colon(u':');
  for (auto& unit : text) {
    if (unit == slash) {
      unit = colon;
    } else if (unit == colon) {
      unit = slash;
    }
  }
  return text;
}

}  // namespace

std::optional<QString> HFSPath(const HFSPathTarget& target) {
  if (!target.path.starts_with('/') || target.path.find('\0') != std::string::npos) return std::nullopt;
  const QString names = WithSeparatorsSwapped(LosslessText(target.path));
  QString hfsPath = QLatin1StringView(kVolume);
  hfsPath.reserve(hfsPath.size() + names.size() + 1);
  for (const QStringView name : QStringView(names).tokenize(u':', Qt::SkipEmptyParts)) {
    if (name == u".") continue;
    hfsPath += u':';
    if (name != u"..") hfsPath += name;
  }
  if (target.isDirectory) hfsPath += u':';
  return hfsPath;
}

std::optional<HFSPathTarget> TargetOfHFSPath(QStringView hfsPath) {
  HFSPathTarget target;
  target.isDirectory = hfsPath.endsWith(u':');
  if (target.isDirectory) hfsPath.chop(1);
  std::optional<std::string> bytes = BytesOfLosslessText(hfsPath);
  if (!bytes || !bytes->starts_with(kVolume) || bytes->find('\0') != std::string::npos) return std::nullopt;
  const std::string names = WithSeparatorsSwapped(*std::move(bytes));
  std::string_view rest = std::string_view(names).substr(kVolume.size());
  while (!rest.empty()) {
    if (!rest.starts_with('/')) return std::nullopt;
    rest.remove_prefix(1);
    const std::string_view name = rest.substr(0, rest.find('/'));
    if (name == "." || name == "..") return std::nullopt;
    target.path.append("/").append(name.empty() ? ".." : name);
    rest.remove_prefix(name.size());
  }
  if (target.path.empty()) target.path = "/";
  return target;
}

}  // namespace quillforth::platform
