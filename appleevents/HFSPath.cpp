// SPDX-License-Identifier: MIT

#include "appleevents/HFSPath.h"

#include <string_view>

#include "appleevents/LosslessText.h"

namespace quillforth::platform {

namespace {

constexpr std::string_view kVolume = "Linux";

// What separates names in one form may stand in a name of the other. Neither occurs inside a character, so
// that a whole path is changed at once.
template <typename Text>
Text WithSeparatorsSwapped(Text text) {
  constexpr typename Text::value_type slash(u'/');
  constexpr typename Text::value_type colon(u':');
  for (auto& unit : text) {
    if (unit == slash) {
      unit = colon;
    } else if (unit == colon) {
      unit = slash;
    }
  }
  return text;
}

}  // namespace

std::optional<QString> HFSPath(const HFSPathTarget& target) {
  if (!target.path.starts_with('/') || target.path.find('\0') != std::string::npos) return std::nullopt;
  const QString names = WithSeparatorsSwapped(LosslessText(target.path));
  QString hfsPath = QLatin1StringView(kVolume);
  hfsPath.reserve(hfsPath.size() + names.size() + 1);
  for (const QStringView name : QStringView(names).tokenize(u':', Qt::SkipEmptyParts)) {
    if (name == u".") continue;
    hfsPath += u':';
    if (name != u"..") hfsPath += name;
  }
  if (target.isDirectory) hfsPath += u':';
  return hfsPath;
}

std::optional<HFSPathTarget> TargetOfHFSPath(QStringView hfsPath) {
  HFSPathTarget target;
  target.isDirectory = hfsPath.endsWith(u':');
  if (target.isDirectory) hfsPath.chop(1);
  std::optional<std::string> bytes = BytesOfLosslessText(hfsPath);
  if (!bytes || !bytes->starts_with(kVolume) || bytes->find('\0') != std::string::npos) return std::nullopt;
  const std::string names = WithSeparatorsSwapped(*std::move(bytes));
  std::string_view rest = std::string_view(names).substr(kVolume.size());
  while (!rest.empty()) {
    if (!rest.starts_with('/')) return std::nullopt;
    rest.remove_prefix(1);
    const std::string_view name = rest.substr(0, rest.find('/'));
    if (name == "." || name == "..") return std::nullopt;
    target.path.append("/").append(name.empty() ? ".." : name);
    rest.remove_prefix(name.size());
  }
  if (target.path.empty()) target.path = "/";
  return target;
}

}  // namespace quillforth::platform
