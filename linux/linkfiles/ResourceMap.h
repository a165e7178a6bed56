// SPDX-License-Identifier: MIT
//
// Reads the bytes of a resource fork.
//
//   fork        data offset 4 | map offset 4 | data length 4 | map length 4 | … | data | map, or map | data
//   data        length 4 | bytes, again and again
//   map         header's copy 16 | reserved 6 | attributes 2 | type list offset 2 | name list offset 2 | …
//   type list   number of types - 1: 2 | types | reference lists
//   type        code 4 | number of references - 1: 2 | reference list offset, from the type list on 2
//   reference   ID 2 | name offset 2 | attributes 1 | offset of the length in the data 3 | reserved 4
//
// Numbers are big-endian. The whole fork is refused when its data or its map does not lie in it, when they
// share bytes or cover the header, or when the list of types does not fit the map. A type whose references
// do not fit the map has none. Only what is asked for is read, so that a question costs time linear in the
// number of types at most. Names and attributes are not read.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <memory>
#include <optional>

#include "linux/linkfiles/ByteRegion.h"
#include "platform/ResourceFork.h"

namespace quillforth::platform {

/// The resource fork in an AppleDouble file (RFC 1740, appendix B). Such a file keeps what another file has
/// besides its data.
///
///   file     magic 0x00051607 4 | version 4 | filler 16 | number of entries 2 | entries | …
///   entry    ID 4 | offset 4 | length 4                                   (ID 2: the resource fork)
///
/// Numbers are big-endian. Versions 1 and 2 are the same in everything that is read here. Pure; any thread.
///
/// Nothing when `bytes` are no AppleDouble file, or have no such entry, or two. Nothing either when that
/// entry is not wholly in the file, or shares bytes with the header or another entry.
[[nodiscard]] std::optional<QByteArrayView> ResourceForkInAppleDouble(QByteArrayView bytes);

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

  QByteArray bytes_;  // the regions lie in these; they never change
  ByteRegion data_;
  ByteRegion typeList_;  // to the end of the map
  std::uint32_t typeCount_;
};

}  // namespace quillforth::platform
