// SPDX-License-Identifier: MIT
//
// Bytes as the name of a file: the text of them has the same bytes. As an HFS-style path: refused, or a path
// that comes back.

#include <cstdint>
#include <cstdlib>

#include "appleevents/AppleEvents.h"
#include "appleevents/HFSPath.h"

namespace {

using namespace quillforth::platform;

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const std::string original = bytes.toStdString();
  Require(BytesOfLosslessText(LosslessText(original)) == original);
  const std::optional<QString> text = UnicodeTextValue({descriptor_type::kUnicodeText, bytes});
  const std::optional<HFSPathTarget> target = TargetOfHFSPath(QStringLiteral("Linux:") + *text);
  if (!target) return 0;
  const std::optional<QString> hfsPath = HFSPath(*target);
  Require(hfsPath && TargetOfHFSPath(*hfsPath)->path == target->path);
  return 0;
}
