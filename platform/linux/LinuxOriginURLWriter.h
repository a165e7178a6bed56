// SPDX-License-Identifier: MIT
//
// A file's source in the extended attribute "user.xdg.origin.url" (freedesktop.org, common extended
// attributes).
#pragma once

#include "platform/OriginURL.h"

namespace quillforth::platform {

class LinuxOriginURLWriter final : public OriginURLWriter {
 public:
  [[nodiscard]] common::Status setOriginURL(const FileReference& file, const QString& url) override;
};

}  // namespace quillforth::platform
