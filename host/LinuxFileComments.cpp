// SPDX-License-Identifier: MIT

#include "host/LinuxFileComments.h"

#include "fileops/FinderComment.h"
#include "linux/files/ExtendedAttributes.h"

namespace quillforth::host {

void LinuxFileComments::setComment(const QString& path, const QString& comment) {
  const platform::FileReference file(path.toStdString());
  static_cast<void>(fileops::SetFinderComment(events_, file, comment));
  static_cast<void>(platform::WriteAttribute(file.path(), "user.xdg.origin.url", comment.toStdString()));
}

}  // namespace quillforth::host
