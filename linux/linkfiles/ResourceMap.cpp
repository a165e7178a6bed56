// SPDX-License-Identifier: MIT

#include "linux/linkfiles/ResourceMap.h"

#include <cstdint>
#include <utility>

namespace quillforth::platform {

namespace {

constexpr std::uint32_t kMagic = 0x00051607;
constexpr std::uint32_t kVersion1 = 0x00010000;
constexpr std::uint32_t kVersion2 = 0x00020000;
constexpr std::uint64_t kCountOffset = 24;
constexpr std::uint64_t kEntriesOffset = 26;
constexpr std::uint64_t kEntryLength = 12;
constexpr std::uint32_t kResourceForkID = 2;

struct Entry {
  std::uint32_t id;
  std::uint32_t offset;
  std::uint32_t length;
};

// The length of `entries` is a multiple of kEntryLength.
Entry EntryAt(const ByteRegion& entries, std::uint64_t position) {
  return {*entries.number<std::uint32_t>(position), *entries.number<std::uint32_t>(position + 4),
          *entries.number<std::uint32_t>(position + 8)};
}

std::optional<ByteRegion> FindEntries(const ByteRegion& file) {
  const auto version = file.number<std::uint32_t>(4);
  if (file.number<std::uint32_t>(0) != kMagic || (version != kVersion1 && version != kVersion2)) {
    return std::nullopt;
  }
  const auto count = file.number<std::uint16_t>(kCountOffset);
  return count ? file.part(kEntriesOffset, *count * kEntryLength) : std::nullopt;
}

// Nothing unless there is exactly one.
std::optional<Entry> FindResourceFork(const ByteRegion& entries) {
  std::optional<Entry> found;
  for (std::uint64_t position = 0; position < entries.size(); position += kEntryLength) {
    const Entry entry = EntryAt(entries, position);
    if (entry.id != kResourceForkID) continue;
    if (found) return std::nullopt;
    found = entry;
  }
  return found;
}

bool OverlapsAnother(const Entry& fork, const ByteRegion& entries) {
  for (std::uint64_t position = 0; position < entries.size(); position += kEntryLength) {
    const Entry other = EntryAt(entries, position);
    if (other.id != kResourceForkID && Overlap(fork.offset, fork.length, other.offset, other.length)) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::optional<QByteArrayView> ResourceForkInAppleDouble(QByteArrayView bytes) {
  const ByteRegion file(bytes);
  const std::optional<ByteRegion> entries = FindEntries(file);
  if (!entries) return std::nullopt;
  const std::optional<Entry> fork = FindResourceFork(*entries);
  if (!fork || fork->offset < kEntriesOffset + entries->size()) return std::nullopt;
  const std::optional<ByteRegion> content = file.part(fork->offset, fork->length);
  if (!content || OverlapsAnother(*fork, *entries)) return std::nullopt;
  return content->bytes();
}

namespace {

constexpr std::uint64_t kHeaderLength = 16;
constexpr std::uint64_t kTypeListOffsetInMap = 24;
constexpr std::uint64_t kMapHeaderLength = 28;
constexpr std::uint64_t kCountLength = 2;
constexpr std::uint64_t kTypeLength = 8;
constexpr std::uint64_t kReferenceLength = 12;
constexpr std::uint64_t kLengthLength = 4;

struct Layout {
  ByteRegion data;
  ByteRegion map;
};

std::optional<Layout> FindLayout(const ByteRegion& fork) {
  const auto dataOffset = fork.number<std::uint32_t>(0);
  const auto mapOffset = fork.number<std::uint32_t>(4);
  const auto dataLength = fork.number<std::uint32_t>(8);
  const auto mapLength = fork.number<std::uint32_t>(12);
  if (!dataOffset || !mapOffset || !dataLength || !mapLength) return std::nullopt;
  if (*dataOffset < kHeaderLength || *mapOffset < kHeaderLength) return std::nullopt;
  if (Overlap(*dataOffset, *dataLength, *mapOffset, *mapLength)) return std::nullopt;
  const std::optional<ByteRegion> data = fork.part(*dataOffset, *dataLength);
  const std::optional<ByteRegion> map = fork.part(*mapOffset, *mapLength);
  if (!data || !map) return std::nullopt;
  return Layout{*data, *map};
}

// Counts are stored less one, so that 0xFFFF stands for none.
std::optional<std::uint32_t> StoredCount(const ByteRegion& region, std::uint64_t offset) {
  const auto lessOne = region.number<std::uint16_t>(offset);
  if (!lessOne) return std::nullopt;
  return (*lessOne + 1U) & 0xFFFFU;
}

}  // namespace

std::unique_ptr<ResourceMap> ResourceMap::read(QByteArray bytes) {
  if (bytes.size() > kMaxResourceForkLength) return nullptr;
  const std::optional<Layout> layout = FindLayout(ByteRegion(bytes));
  if (!layout) return nullptr;
  const auto typeListOffset = layout->map.number<std::uint16_t>(kTypeListOffsetInMap);
  if (!typeListOffset || *typeListOffset < kMapHeaderLength || *typeListOffset > layout->map.size()) {
    return nullptr;
  }
  const auto typeList = layout->map.part(*typeListOffset, layout->map.size() - *typeListOffset);
  const std::optional<std::uint32_t> typeCount = StoredCount(*typeList, 0);
  if (!typeCount || !typeList->holds(kCountLength, *typeCount * kTypeLength)) return nullptr;
  return std::unique_ptr<ResourceMap>(new ResourceMap(std::move(bytes), layout->data, *typeList, *typeCount));
}

std::optional<ByteRegion> ResourceMap::references(common::FourCharCode type) const {
  const std::uint64_t end = kCountLength + typeCount_ * kTypeLength;
  for (std::uint64_t entry = kCountLength; entry < end; entry += kTypeLength) {
    if (typeList_.number<common::FourCharCode>(entry) != type) continue;
    const std::uint32_t count = *StoredCount(typeList_, entry + 4);
    const std::uint16_t offset = *typeList_.number<std::uint16_t>(entry + 6);
    return offset < end ? std::nullopt : typeList_.part(offset, count * kReferenceLength);
  }
  return std::nullopt;
}

std::size_t ResourceMap::countResources(common::FourCharCode type) const {
  const std::optional<ByteRegion> found = references(type);
  return found ? found->size() / kReferenceLength : 0;
}

std::optional<QByteArrayView> ResourceMap::resource(common::FourCharCode type, std::size_t index) const {
  const std::optional<ByteRegion> found = references(type);
  if (!found || index == 0 || index > found->size() / kReferenceLength) return std::nullopt;
  // The number's first byte holds attributes, the other three the offset.
  const std::uint32_t offset = *found->number<std::uint32_t>((index - 1) * kReferenceLength + 4) & 0xFFFFFFU;
  const auto length = data_.number<std::uint32_t>(offset);
  const auto content = length ? data_.part(offset + kLengthLength, *length) : std::nullopt;
  return content ? std::optional(content->bytes()) : std::nullopt;
}

}  // namespace quillforth::platform
