// SPDX-License-Identifier: MIT
//
// Resource forks and AppleDouble files, made byte by byte.
#pragma once

#include <QByteArray>
#include <vector>

namespace quillforth::tests {

/// The last `length` bytes of `value`, the first one most significant.
inline QByteArray BigEndian(qsizetype value, int length = 4) {
  return length == 0 ? QByteArray() : BigEndian(value >> 8, length - 1) + static_cast<char>(value);
}

/// A fork with resources of one type. The data begin at 256, and the map ends the fork.
inline QByteArray ForkBytes(const QByteArray& type, const std::vector<QByteArray>& resources) {
  const auto count = static_cast<qsizetype>(resources.size());
  QByteArray data, map = QByteArray(24, '\0') + BigEndian(28, 2) + BigEndian(38 + 12 * count, 2);
  map += BigEndian(0, 2) + type + BigEndian(count - 1, 2) + BigEndian(10, 2);
  for (const QByteArray& bytes : resources) {
    map += BigEndian(128, 2) + BigEndian(-1, 2) + BigEndian(data.size()) + BigEndian(0);
    data += BigEndian(bytes.size()) + bytes;
  }
  const QByteArray header = BigEndian(256) + BigEndian(256 + data.size()) + BigEndian(data.size());
  return (header + BigEndian(map.size())).leftJustified(256, '\0') + data + map;
}

/// With an entry of 32 bytes at 50, ID 9, before the fork.
inline QByteArray AppleDoubleBytes(const QByteArray& fork) {
  return BigEndian(0x00051607) + BigEndian(0x00020000) + QByteArray(16, ' ') + BigEndian(2, 2) +
         BigEndian(9) + BigEndian(50) + BigEndian(32) + BigEndian(2) + BigEndian(82) +
         BigEndian(fork.size()) + QByteArray(32, ' ') + fork;
}

}  // namespace quillforth::tests
