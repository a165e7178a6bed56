// SPDX-License-Identifier: MIT

#include "linux/session/LinuxMainBundle.h"

#include <QDir>
#include <QFileInfo>

namespace quillforth::platform {

LinuxMainBundle::LinuxMainBundle(QStringList folders) : folders_(std::move(folders)) {}

std::optional<QString> LinuxMainBundle::objectForInfoDictionaryKey(const QString& key) {
  if (key == u"CFBundleSignature") return QString::fromLatin1(kSignature);
  return std::nullopt;
}

std::optional<QString> LinuxMainBundle::pathForResource(const QString& name) {
  if (name.isEmpty() || name.contains(u'/')) return std::nullopt;
  for (const QString& folder : folders_) {
    const QFileInfo file(QDir(folder), name);
    if (file.isFile()) return file.absoluteFilePath();
  }
  return std::nullopt;
}

QStringList LinuxMainBundle::standardResourceFolders() {
  const QString binary = QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget();
  return {QDir::cleanPath(QFileInfo(binary).path() + QStringLiteral("/../share/quillforth"))};
}

}  // namespace quillforth::platform
