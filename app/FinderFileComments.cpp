// SPDX-License-Identifier: MIT

#include "app/FinderFileComments.h"

#include "fileops/FinderComment.h"

namespace quillforth::app {

void FinderFileComments::setComment(const QString& path, const QString& comment) {
  const platform::FileReference file(path.toStdString());
  static_cast<void>(fileops::SetFinderComment(events_, file, comment));
  static_cast<void>(origins_.setOriginURL(file, comment));
}

}  // namespace quillforth::app
