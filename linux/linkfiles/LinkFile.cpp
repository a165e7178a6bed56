// SPDX-License-Identifier: MIT

#include "linux/linkfiles/LinkFile.h"

#include <plist/plist.h>

#include <QStringDecoder>
#include <algorithm>
#include <cstdint>
#include <memory>

#include "linux/linkfiles/ByteRegion.h"
#include "net/URL.h"

namespace quillforth::platform {

namespace {

// The URL in a property list, read by libplist.
//
// libplist follows references and frees nested values by calling itself, so that a few bytes could make it
// fill the memory or the stack. A link is one dictionary of plain values, and libplist gets only such
// lists.

constexpr QByteArrayView kBinaryMagic("bplist0");
/// Tags of an XML list; they bound how deeply it can be nested.
constexpr std::ptrdiff_t kMaxTags = 256;
constexpr std::uint64_t kMaxObjects = 256;

using PropertyList = std::unique_ptr<void, decltype(&plist_free)>;

bool IsBinary(QByteArrayView bytes) {
  return bytes.startsWith(kBinaryMagic);
}

// Whether the marker is that of an array, a set or a dictionary.
bool IsContainerMarker(std::uint8_t marker) {
  return marker >= 0xA0 && marker <= 0xDF;
}

// The offset of an object, `length` bytes with the first one most significant.
std::uint64_t OffsetIn(QByteArrayView bytes) {
  std::uint64_t offset = 0;
  for (const char byte : bytes) offset = offset << 8 | static_cast<std::uint8_t>(byte);
  return offset;
}

// Whether a binary list has one container at most, and that one of at most 14 values.
//
//   list       "bplist00" | objects | offset table | trailer 32
//   object     marker 1: kind in the upper four bits, number of values in the lower (15: it follows) |
//   … trailer    unused 6 | bytes of an offset 1 | bytes of a reference 1 | number of objects 8
//              | root's number 8 | position of the offset table 8
bool IsPlainBinaryList(const ByteRegion& list) {
  constexpr std::uint64_t kTrailerLength = 32;
  if (list.size() < kTrailerLength) return false;
  const ByteRegion trailer = *list.part(list.size() - kTrailerLength, kTrailerLength);
  const auto offsetLength = *trailer.number<std::uint8_t>(6);
  const auto objectCount = *trailer.number<std::uint64_t>(8);
  if (offsetLength == 0 || offsetLength > 8 || objectCount > kMaxObjects) return false;
  const auto offsets = list.part(*trailer.number<std::uint64_t>(24), objectCount * offsetLength);
  if (!offsets) return false;
  int containers = 0;
  for (std::uint64_t i = 0; i < objectCount; ++i) {
    const auto marker =
        list.number<std::uint8_t>(OffsetIn(offsets->part(i * offsetLength, offsetLength)->bytes()));
    if (!marker) return false;
    if (!IsContainerMarker(*marker)) continue;
    if (++containers > 1 || (*marker & 0xF) == 0xF) return false;
  }
  return true;
}

// Whether `bytes` begin like a property list, XML without a byte-order mark or binary.
bool IsPropertyList(QByteArrayView bytes) {
  const QByteArrayView text = bytes.trimmed();
  return IsBinary(bytes) || text.startsWith("<?xml") || text.startsWith("<!DOCTYPE plist") ||
         text.startsWith("<plist");
}

PropertyList Parse(QByteArrayView bytes) {
  plist_t list = nullptr;
  const auto length = static_cast<std::uint32_t>(bytes.size());
  if (IsBinary(bytes)) {
    if (IsPlainBinaryList(ByteRegion(bytes))) plist_from_bin(bytes.data(), length, &list);
  } else if (IsPropertyList(bytes) && std::count(bytes.begin(), bytes.end(), '<') <= kMaxTags) {
    plist_from_xml(bytes.data(), length, &list);
  }
  return {list, &plist_free};
}

// The text "URL" in the list's dictionary. `bytes` may be anything, but not over 4 GiB.
std::optional<QByteArray> URLInPropertyList(QByteArrayView bytes) {
  const PropertyList list = Parse(bytes);
  if (plist_get_node_type(list.get()) != PLIST_DICT) return std::nullopt;
  const plist_t url = plist_dict_get_item(list.get(), "URL");
  if (plist_get_node_type(url) != PLIST_STRING) return std::nullopt;
  std::uint64_t length = 0;
  const char* text = plist_get_string_ptr(url, &length);
  if (text == nullptr) return std::nullopt;
  return QByteArrayView(text, static_cast<qsizetype>(length)).trimmed().toByteArray();
}

enum class Kind { propertyList, internetShortcut, desktopEntry };

constexpr QByteArrayView kShortcutGroup("[InternetShortcut]");
constexpr QByteArrayView kDesktopGroup("[Desktop Entry]");

std::optional<QStringDecoder::Encoding> WideEncodingOf(QByteArrayView bytes) {
  if (bytes.size() < 2) return std::nullopt;
  // Every kind of link file begins with a character of ASCII, if not with a byte-order mark.
  if (bytes.startsWith("\xFF\xFE") || (bytes[0] != 0 && bytes[1] == 0)) return QStringDecoder::Utf16LE;
  if (bytes.startsWith("\xFE\xFF") || (bytes[0] == 0 && bytes[1] != 0)) return QStringDecoder::Utf16BE;
  return std::nullopt;
}

// The text in UTF-8, without a byte-order mark.
QByteArray Content(QByteArrayView bytes) {
  constexpr QByteArrayView kMark("\xEF\xBB\xBF");
  if (const auto encoding = WideEncodingOf(bytes)) {
    return QString(QStringDecoder(*encoding, QStringDecoder::Flag::Stateless).decode(bytes)).toUtf8();
  }
  return bytes.sliced(bytes.startsWith(kMark) ? kMark.size() : 0).toByteArray();
}

// Takes the first line off `rest`, without its end and the blanks around it; nothing when all are taken.
// Lines end in LF, CR or CR LF; after CR LF an empty line follows.
std::optional<QByteArrayView> TakeLine(QByteArrayView& rest) {
  if (rest.isEmpty()) return std::nullopt;
  const auto end = std::find_if(rest.begin(), rest.end(), [](char c) { return c == '\n' || c == '\r'; });
  const qsizetype length = end - rest.begin();
  const QByteArrayView line = rest.first(length);
  rest = rest.sliced(std::min(length + 1, rest.size()));
  return line.trimmed();
}

struct Name {
  QByteArrayView text;
  bool mayHoldVariables = false;  // the value of this key
};

// A key or a group without KDE's flags after it: "name[$i]" must not be changed, and the value of "name[$e]"
// may hold variables. Unknown flags stay.
Name NameWithoutFlags(QByteArrayView text) {
  Name name{text};
  while (name.text.endsWith(']')) {
    const qsizetype mark = name.text.lastIndexOf("[$");
    if (mark < 0) break;
    const QByteArrayView flags = name.text.sliced(mark + 2).chopped(1);
    const bool isKnown = std::all_of(flags.begin(), flags.end(), [](char c) { return c == 'e' || c == 'i'; });
    if (!isKnown) break;
    name.mayHoldVariables |= flags.contains('e');
    name.text.truncate(mark);
  }
  return name;
}

struct Value {
  QByteArrayView text;
  bool mayHoldVariables;
};

// What `line` says of `key`.
std::optional<Value> ValueOf(QByteArrayView line, QByteArrayView key, Qt::CaseSensitivity letterCase) {
  const qsizetype equals = line.indexOf('=');
  if (equals < 0) return std::nullopt;
  const Name name = NameWithoutFlags(line.first(equals).trimmed());
  if (name.text.compare(key, letterCase) != 0) return std::nullopt;
  return Value{line.sliced(equals + 1).trimmed(), name.mayHoldVariables};
}

// The first value of `key` in the first group with the header `group`.
std::optional<Value> ValueInGroup(QByteArrayView text, QByteArrayView group, QByteArrayView key,
                                  Qt::CaseSensitivity letterCase) {
  bool inGroup = false;
  while (const std::optional<QByteArrayView> line = TakeLine(text)) {
    if (line->startsWith('[')) {
      if (inGroup) return std::nullopt;
      inGroup = NameWithoutFlags(*line).text.compare(group, letterCase) == 0;
    } else if (inGroup) {
      if (std::optional<Value> value = ValueOf(*line, key, letterCase)) return value;
    }
  }
  return std::nullopt;
}

QByteArrayView FirstGroup(QByteArrayView text) {
  while (const std::optional<QByteArrayView> line = TakeLine(text)) {
    const QByteArrayView name = NameWithoutFlags(*line).text;  // empty for flags of the whole file
    if (!name.isEmpty() && !name.startsWith('#') && !name.startsWith(';')) return name;
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
  return url ? std::optional(url->text.toByteArray()) : std::nullopt;
}

std::optional<QByteArray> URLInDesktopEntry(QByteArrayView text) {
  const auto type = ValueInGroup(text, kDesktopGroup, "Type", Qt::CaseSensitive);
  const auto url = ValueInGroup(text, kDesktopGroup, "URL", Qt::CaseSensitive);
  if (!type || type->text != "Link" || !url) return std::nullopt;
  const QByteArray unescaped = Unescaped(url->text);
  return url->mayHoldVariables ? QByteArray(unescaped).replace("$$", "$") : unescaped;
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
  if (is("webloc") || is("inetloc")) return Kind::propertyList;
  if (is("url")) return Kind::internetShortcut;
  return is("desktop") ? std::optional(Kind::desktopEntry) : std::nullopt;
}

std::optional<Kind> KindOf(std::string_view name, QByteArrayView text) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || dot == 0) return KindOfContent(text);
  return KindOfExtension(name.substr(dot + 1));
}

std::optional<QByteArray> URLOfKind(Kind kind, QByteArrayView text) {
  switch (kind) {
    case Kind::propertyList:
      return URLInPropertyList(text);
    case Kind::internetShortcut:
      return URLInInternetShortcut(text);
    case Kind::desktopEntry:
      return URLInDesktopEntry(text);
  }
  return std::nullopt;
}

}  // namespace

std::optional<QByteArray> URLInLinkFile(std::string_view name, QByteArrayView bytes) {
  if (bytes.size() > kMaxLinkFileLength) return std::nullopt;
  const QByteArray text = Content(bytes);
  const std::optional<Kind> kind = KindOf(name, text);
  std::optional<QByteArray> url = kind ? URLOfKind(*kind, text) : std::nullopt;
  return url && HasWebScheme(QString::fromUtf8(*url)) ? url : std::nullopt;
}

}  // namespace quillforth::platform
