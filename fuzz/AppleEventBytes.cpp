// SPDX-License-Identifier: MIT
//
// Bytes as a descriptor: refused, or read, coerced and written as they were. A text in it as HFS-style path:
// refused, or a path that comes back.

#include "platform/AppleEventBytes.h"

#include <cstdint>
#include <cstdlib>

#include "platform/HFSPath.h"
#include "platform/LosslessText.h"

namespace {

using namespace quillforth::platform;

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckText(QByteArrayView bytes) {
  const std::string original = bytes.toByteArray().toStdString();
  Require(BytesOfLosslessText(LosslessText(original)) == original);
  const std::optional<QString> text = UnicodeTextValue({descriptor_type::kUnicodeText, bytes.toByteArray()});
  const std::optional<HFSPathTarget> target = TargetOfHFSPath(QStringLiteral("Linux:") + *text);
  if (!target) return;
  const std::optional<QString> hfsPath = HFSPath(*target);
  Require(hfsPath && TargetOfHFSPath(*hfsPath)->path == target->path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QByteArrayView bytes(data, static_cast<qsizetype>(size));
  const DescriptorResult result = UnflattenDescriptor(bytes);
  if (result.status == quillforth::common::kNoError) {
    Require(FlattenDescriptor(result.descriptor) == bytes.toByteArray());
    for (const auto type :
         {descriptor_type::kUnicodeText, descriptor_type::kUTF8Text, descriptor_type::kInt16,
          descriptor_type::kInt32, descriptor_type::kRecord, descriptor_type::kObjectSpecifier}) {
      static_cast<void>(CoerceDescriptor(result.descriptor, type));
    }
  }
  CheckText(bytes);
  return 0;
}
