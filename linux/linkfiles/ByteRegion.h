// SPDX-License-Identifier: MIT
//
// A stretch of bytes from a stranger, with checked access to the numbers and stretches in it.
//
// Numbers are big-endian. Pure; any thread.
#pragma once

#include <QByteArrayView>
#include <QtEndian>
#include <cstdint>
#include <optional>

namespace quillforth::platform {

class ByteRegion {
 public:
  explicit ByteRegion(QByteArrayView bytes) : bytes_(bytes) {}

  [[nodiscard]] QByteArrayView bytes() const { return bytes_; }
  [[nodiscard]] std::uint64_t size() const { return static_cast<std::uint64_t>(bytes_.size()); }
  /// Whether `length` bytes at `offset` lie in this stretch. Sums cannot wrap.
  [[nodiscard]] bool holds(std::uint64_t offset, std::uint64_t length) const {
    return offset <= size() && length <= size() - offset;
  }
  [[nodiscard]] std::optional<ByteRegion> part(std::uint64_t offset, std::uint64_t length) const {
    if (!holds(offset, length)) return std::nullopt;
    return ByteRegion(bytes_.sliced(static_cast<qsizetype>(offset), static_cast<qsizetype>(length)));
  }
  template <typename Number>
  [[nodiscard]] std::optional<Number> number(std::uint64_t offset) const {
    if (!holds(offset, sizeof(Number))) return std::nullopt;
    return qFromBigEndian<Number>(bytes_.data() + offset);
  }

 private:
  QByteArrayView bytes_;
};

/// Whether two stretches share a byte. Offsets and lengths are of 32 bits, so that no sum wraps.
[[nodiscard]] constexpr bool Overlap(std::uint64_t offset, std::uint64_t length, std::uint64_t otherOffset,
                                     std::uint64_t otherLength) {
  return length > 0 && otherLength > 0 && offset < otherOffset + otherLength && otherOffset < offset + length;
}

}  // namespace quillforth::platform
