// SPDX-License-Identifier: MIT

#include "linux/linkfiles/PropertyListLink.h"

#include <plist/plist.h>

#include <algorithm>
#include <cstdint>
#include <memory>

#include "linux/linkfiles/ByteRegion.h"

namespace quillforth::platform {

namespace {

constexpr QByteArrayView kBinaryMagic("bplist0");
/// Tags of an XML list; they bound how deeply it can be nested.
constexpr std::ptrdiff_t kMaxTags = 256;
constexpr std::uint64_t kMaxObjects = 256;

using PropertyList = std::unique_ptr<void, decltype(&plist_free)>;

bool IsBinary(QByteArrayView bytes) {
  return bytes.startsWith(kBinaryMagic);
}

// Of an array, a set or a dictionary.
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
//   object     marker 1: kind in the upper four bits, number of values in the lower (15: stands behind it) |
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

}  // namespace

bool IsPropertyList(QByteArrayView bytes) {
  const QByteArrayView text = bytes.trimmed();
  return IsBinary(bytes) || text.startsWith("<?xml") || text.startsWith("<!DOCTYPE plist") ||
         text.startsWith("<plist");
}

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

}  // namespace quillforth::platform
