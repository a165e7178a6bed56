// SPDX-License-Identifier: MIT

#include "linux/linkfiles/AppleDouble.h"

#include <cstdint>

#include "linux/linkfiles/ByteRegion.h"

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

}  // namespace quillforth::platform
