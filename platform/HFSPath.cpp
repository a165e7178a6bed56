// SPDX-License-Identifier: MIT

#include "platform/HFSPath.h"

#include <QList>
#include <algorithm>
#include <string_view>

#include "platform/LosslessText.h"

namespace quillforth::platform {

namespace {

constexpr QStringView kVolume = u"Linux";

QString ComponentOfName(std::string_view name) {
  if (name == "..") return {};
  return LosslessText(name).replace(u':', u'/');
}

// Nothing for what is no single path component.
std::optional<std::string> NameOfComponent(QStringView component) {
  if (component.isEmpty()) return "..";
  std::optional<std::string> name = BytesOfLosslessText(component);
  if (!name || *name == "." || *name == ".." || name->find('\0') != std::string::npos) return std::nullopt;
  std::replace(name->begin(), name->end(), '/', ':');
  return name;
}

}  // namespace

std::optional<QString> HFSPath(const HFSPathTarget& target) {
  std::string_view path = target.path;
  if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) return std::nullopt;
  QString hfsPath = kVolume.toString();
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string_view name = path.substr(0, end);
    if (!name.empty() && name != ".") hfsPath += u':' + ComponentOfName(name);
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  if (target.isDirectory) hfsPath += u':';
  return hfsPath;
}

std::optional<HFSPathTarget> TargetOfHFSPath(QStringView hfsPath) {
  HFSPathTarget target;
  target.isDirectory = hfsPath.endsWith(u':');
  if (target.isDirectory) hfsPath.chop(1);
  bool isVolume = true;
  for (const QStringView component : hfsPath.split(u':')) {
    if (isVolume) {
      if (component != kVolume) return std::nullopt;
      isVolume = false;
      continue;
    }
    const std::optional<std::string> name = NameOfComponent(component);
    if (!name) return std::nullopt;
    target.path += '/' + *name;
  }
  if (target.path.empty()) target.path = "/";
  return target;
}

}  // namespace quillforth::platform
