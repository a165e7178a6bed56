// SPDX-License-Identifier: MIT
//
// Descriptors as bytes, for carrying them between processes of one machine.
//
//   descriptor   type 4 | length of the contents 4 | contents
//   contents     of a list: descriptors
//                of a record or object specifier: keyword 4 | descriptor, again and again
//                of anything else: its data
//
// Types, lengths and keywords have their first byte most significant. Pure; any thread.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <cstddef>
#include <optional>

#include "platform/AppleEvents.h"

namespace quillforth::platform {

/// Bytes of a whole descriptor.
inline constexpr qsizetype kMaxFlatLength = qsizetype{16} * 1024 * 1024;
/// Containers in containers; a plain descriptor has depth 0.
inline constexpr int kMaxDescriptorDepth = 16;
/// Items of all containers together.
inline constexpr std::size_t kMaxDescriptorItems = 65536;
/// Fields of one record or object specifier.
inline constexpr std::size_t kMaxRecordFields = 256;

/// Nothing for a descriptor that is beyond one of the limits.
[[nodiscard]] std::optional<QByteArray> FlattenDescriptor(const AEDescriptor& descriptor);
/// `bytes` may be anything. -1702 when they are not exactly one descriptor within the limits: lengths that
/// do not fit, a null descriptor with data, a keyword twice in a record.
[[nodiscard]] DescriptorResult UnflattenDescriptor(QByteArrayView bytes);

}  // namespace quillforth::platform
