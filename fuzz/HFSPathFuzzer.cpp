// SPDX-License-Identifier: MIT
//
// Bytes as the name of a file: the text of them has the same bytes. As an HFS-style path: refused, or a path
// that comes back.

#include "appleevents/AppleEvents.h"
#include "appleevents/HFSPath.h"
#include "fuzz/Fuzz.h"

namespace quillforth::fuzz {

using namespace platform;

void Check(std::string_view input) {
  const std::string original(input);
  Require(BytesOfLosslessText(LosslessText(original)) == original, "a name loses nothing as a text");
  const QByteArray bytes = QByteArray::fromStdString(original);
  const std::optional<QString> text = UnicodeTextValue({descriptor_type::kUnicodeText, bytes});
  const std::optional<HFSPathTarget> target = TargetOfHFSPath(QStringLiteral("Linux:") + *text);
  if (!target) return;
  const std::optional<QString> hfsPath = HFSPath(*target);
  Require(hfsPath && TargetOfHFSPath(*hfsPath)->path == target->path, "a path comes back");
}

}  // namespace quillforth::fuzz
