// SPDX-License-Identifier: MIT

#include "linux/linkfiles/ResourceMap.h"

#include <utility>

namespace quillforth::platform {

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
