// SPDX-License-Identifier: MIT

#include "linux/transfer/BodySink.h"

#include <algorithm>

namespace quillforth::platform {

bool BodySink::append(std::string_view bytes) {
  if (!file_ && bytes.size() > kCapacity - heldLength_) return false;
  if (!held_) held_ = std::make_unique_for_overwrite<char[]>(kCapacity);
  length_ += bytes.size();
  while (!bytes.empty() && error_ == 0) {
    if (heldLength_ == kCapacity) writeHeld();
    const std::size_t count = std::min(bytes.size(), kCapacity - heldLength_);
    std::copy_n(bytes.data(), count, held_.get() + heldLength_);
    heldLength_ += count;
    bytes.remove_prefix(count);
  }
  return true;
}

int BodySink::finish(std::int64_t modified) {
  writeHeld();
  if (modified > 0) file_->setModified(modified);
  return error_ != 0 ? error_ : file_->publish();
}

void BodySink::writeHeld() {
  if (error_ == 0) error_ = file_->write({held_.get(), heldLength_});
  heldLength_ = 0;
}

}  // namespace quillforth::platform
