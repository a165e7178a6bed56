// SPDX-License-Identifier: MIT

#include "platform/linux/LinkFile.h"

#include "platform/linux/PropertyListLink.h"

namespace quillforth::platform {

namespace {

enum class Kind { propertyList, internetShortcut, desktopEntry };

constexpr QByteArrayView kShortcutGroup("[InternetShortcut]");
constexpr QByteArrayView kDesktopGroup("[Desktop Entry]");

QByteArrayView WithoutByteOrderMark(QByteArrayView bytes) {
  constexpr QByteArrayView kMark("\xEF\xBB\xBF");
  return bytes.startsWith(kMark) ? bytes.sliced(kMark.size()) : bytes;
}

// Takes the first line off `rest`, without its end and the blanks around it; nothing when all are taken.
std::optional<QByteArrayView> TakeLine(QByteArrayView& rest) {
  if (rest.isEmpty()) return std::nullopt;
  const qsizetype end = rest.indexOf('\n');
  const QByteArrayView line = end < 0 ? rest : rest.first(end);
  rest = end < 0 ? QByteArrayView() : rest.sliced(end + 1);
  return line.trimmed();
}

// The first value of `key` in the first group with the header `group`.
std::optional<QByteArrayView> ValueInGroup(QByteArrayView text, QByteArrayView group, QByteArrayView key,
                                           Qt::CaseSensitivity letterCase) {
  bool inGroup = false;
  while (const std::optional<QByteArrayView> line = TakeLine(text)) {
    if (line->startsWith('[')) {
      if (inGroup) return std::nullopt;
      inGroup = line->compare(group, letterCase) == 0;
      continue;
    }
    const qsizetype equals = inGroup ? line->indexOf('=') : -1;
    if (equals >= 0 && line->first(equals).trimmed().compare(key, letterCase) == 0) {
      return line->sliced(equals + 1).trimmed();
    }
  }
  return std::nullopt;
}

QByteArrayView FirstGroup(QByteArrayView text) {
  while (const std::optional<QByteArrayView> line = TakeLine(text)) {
    if (!line->isEmpty() && !line->startsWith('#') && !line->startsWith(';')) return *line;
  }
  return {};
}

// The escapes of values in desktop entries; a "\" before anything else stays.
QByteArray Unescaped(QByteArrayView value) {
  constexpr QByteArrayView kNames("sntr\\");
  constexpr QByteArrayView kCharacters(" \n\t\r\\");
  QByteArray text;
  for (qsizetype i = 0; i < value.size(); ++i) {
    const qsizetype name = value[i] == '\\' && i + 1 < value.size() ? kNames.indexOf(value[i + 1]) : -1;
    text += name < 0 ? value[i] : kCharacters[name];
    if (name >= 0) ++i;
  }
  return text;
}

std::optional<QByteArray> URLInInternetShortcut(QByteArrayView text) {
  const auto url = ValueInGroup(text, kShortcutGroup, "URL", Qt::CaseInsensitive);
  return url ? std::optional(url->toByteArray()) : std::nullopt;
}

std::optional<QByteArray> URLInDesktopEntry(QByteArrayView text) {
  if (ValueInGroup(text, kDesktopGroup, "Type", Qt::CaseSensitive) != QByteArrayView("Link")) {
    return std::nullopt;
  }
  const auto url = ValueInGroup(text, kDesktopGroup, "URL", Qt::CaseSensitive);
  return url ? std::optional(Unescaped(*url)) : std::nullopt;
}

std::optional<Kind> KindOfContent(QByteArrayView text) {
  if (IsPropertyList(text)) return Kind::propertyList;
  const QByteArrayView group = FirstGroup(text);
  if (group.compare(kShortcutGroup, Qt::CaseInsensitive) == 0) return Kind::internetShortcut;
  return group == kDesktopGroup ? std::optional(Kind::desktopEntry) : std::nullopt;
}

std::optional<Kind> KindOfExtension(QByteArrayView extension) {
  const auto is = [extension](QByteArrayView known) {
    return extension.compare(known, Qt::CaseInsensitive) == 0;
  };
  if (is("webloc")) return Kind::propertyList;
  if (is("url")) return Kind::internetShortcut;
  return is("desktop") ? std::optional(Kind::desktopEntry) : std::nullopt;
}

std::optional<Kind> KindOf(std::string_view name, QByteArrayView text) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return KindOfContent(text);
  return KindOfExtension(name.substr(dot + 1));
}

}  // namespace

std::optional<QByteArray> URLInLinkFile(std::string_view name, QByteArrayView bytes) {
  if (bytes.size() > kMaxLinkFileLength) return std::nullopt;
  const QByteArrayView text = WithoutByteOrderMark(bytes);
  const std::optional<Kind> kind = KindOf(name, text);
  if (!kind) return std::nullopt;
  switch (*kind) {
    case Kind::propertyList:
      return URLInPropertyList(text);
    case Kind::internetShortcut:
      return URLInInternetShortcut(text);
    case Kind::desktopEntry:
      return URLInDesktopEntry(text);
  }
  return std::nullopt;
}

}  // namespace quillforth::platform
