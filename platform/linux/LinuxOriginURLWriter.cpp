// SPDX-License-Identifier: MIT

#include "platform/linux/LinuxOriginURLWriter.h"

#include "platform/linux/ExtendedAttributes.h"

namespace quillforth::platform {

common::Status LinuxOriginURLWriter::setOriginURL(const FileReference& file, const QString& url) {
  return WriteAttribute(file.path(), "user.xdg.origin.url", url.toStdString());
}

}  // namespace quillforth::platform
