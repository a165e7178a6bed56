// SPDX-License-Identifier: MIT
//
// Reads the bytes of a resource fork.
//
//   fork        data offset 4 | map offset 4 | data length 4 | map length 4 | … | data | map   (map or data
//   first) data        length 4 | bytes, again and again map         header's copy 16 | reserved 6 |
//   attributes 2 | type list offset 2 | name list offset 2 | … type list   number of types - 1: 2 | types |
//   reference lists type        code 4 | number of references - 1: 2 | reference list offset 2, from the type
//   list on reference   ID 2 | name offset 2 | attributes 1 | offset 3, of the length in the data | reserved
//   4
//
// Numbers have their first byte most significant. A fork is refused whole when its data and its map do not
// lie in it, share bytes, or hide the header, or when the list of types does not fit the map. A type whose
// references do not fit the map has none. Nothing is looked at that is not asked for, so that a question
// costs time linear in the number of types at most. Names and attributes are not read.
#pragma once

#include <QByteArray>
#include <memory>

#include "platform/ByteRegion.h"
#include "platform/ResourceFork.h"

namespace quillforth::platform {

/// The longest fork that is read.
inline constexpr qsizetype kMaxResourceForkLength = qsizetype{16} * 1024 * 1024;

class ResourceMap final : public ResourceFork {
 public:
  /// Null when `bytes` are no resource fork, or too many.
  [[nodiscard]] static std::unique_ptr<ResourceMap> read(QByteArray bytes);

  [[nodiscard]] std::size_t countResources(common::FourCharCode type) const override;
  [[nodiscard]] std::optional<QByteArrayView> resource(common::FourCharCode type,
                                                       std::size_t index) const override;

 private:
  ResourceMap(QByteArray bytes, ByteRegion data, ByteRegion typeList, std::uint32_t typeCount)
      : bytes_(std::move(bytes)), data_(data), typeList_(typeList), typeCount_(typeCount) {}
  /// The references of the first entry for `type`; nothing when there is none, or they do not fit.
  [[nodiscard]] std::optional<ByteRegion> references(common::FourCharCode type) const;

  QByteArray bytes_;  // the regions are its own; nobody else changes them
  ByteRegion data_;
  ByteRegion typeList_;  // to the end of the map
  std::uint32_t typeCount_;
};

}  // namespace quillforth::platform
