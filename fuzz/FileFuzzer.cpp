// SPDX-License-Identifier: MIT
//
// Files of the user that others write, too: the settings, and the table of types (globs2).

#include <QFile>
#include <QRegularExpression>
#include <filesystem>
#include <fstream>
#include <map>

#include "app/Preferences.h"
#include "fuzz/Fuzz.h"
#include "linux/session/SettingsUserDefaults.h"
#include "linux/session/SharedMimeInfo.h"

namespace quillforth::fuzz {

namespace {

// A new file each time: the old one might seem to be unchanged.
void Write(const std::string& path, std::string_view text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::filesystem::remove(path);
  std::ofstream(path, std::ios::binary) << text;
}

std::string Read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void CheckSettings(std::string_view text) {
  static const std::string path = Home().path().toStdString() + "/Tessary Software/Quillforth.conf";
  Write(path, text);
  platform::SettingsUserDefaults defaults;
  const app::Preferences preferences(defaults);
  for (const app::BooleanPreference& each : app::kBooleanPreferences) {
    const bool isOn = preferences.read(each);
    const auto stored = app::BooleanValue(defaults.objectForKey(each.key));
    Require(isOn == stored.value_or(each.defaultValue), "a value that says nothing counts as the default");
  }
  const int ahead = preferences.downloadsAhead();
  Require(ahead >= 0 && ahead <= app::kMaxDownloadsAhead, "a number is within its limits");
  const QVariant alias = defaults.objectForKey(app::kDestinationDirectoryKey);
  defaults.setObject(QStringLiteral("downloadsAhead"), 3);
  const bool isStored = defaults.isStored();
  defaults.synchronize();
  if (!isStored) return Require(Read(path) == text, "a damaged file stays as it is");
  Require(preferences.downloadsAhead() == 3, "what was stored comes back");
  Require(defaults.objectForKey(app::kDestinationDirectoryKey) == alias, "and the rest stays");
}

// The type to pick for each extension: of the greatest weight, then no text, then the first line's.
std::map<std::string, std::string> PlainTypes(std::string_view text) {
  static const QRegularExpression form(QStringLiteral(
      "\\A(-?0*[0-9]{1,3}):([!-.0-9;-~][!-9;-~]*/[!-9;-~]+):\\*(\\.[^:*?\\[\\]\\\\]+)(:.*)?\\z"));
  std::map<std::string, std::string> types;
  std::map<std::string, std::pair<int, bool>> ranks;
  for (const QByteArray& line : QByteArray(text.data(), static_cast<qsizetype>(text.size())).split('\n')) {
    const auto match = form.match(QString::fromLatin1(line));
    const std::pair rank(match.captured(1).toInt(),
                         !match.captured(2).startsWith(QLatin1StringView("text/")));
    if (!match.hasMatch() || rank.first < 0 || rank.first > 100 || match.capturedLength(2) > 255) continue;
    const std::string extension = match.captured(3).toLatin1().toStdString().substr(0, 255);
    const bool isFirst = types.try_emplace(extension).second;
    if (!isFirst && rank <= ranks[extension]) continue;
    types[extension] = match.captured(2).toLatin1().toStdString();
    ranks[extension] = rank;
  }
  return types;
}

void CheckGlobs(std::string_view text) {
  Write(Home().path().toStdString() + "/mime/globs2", text);
  platform::SharedMimeInfo info;
  Require(info.getPrefHandle("Mapping") == common::kNoError, "there is a preference");
  std::map<std::string, std::string> types;
  platform::ICMapEntry entry{};
  for (std::int32_t i = 1; info.getIndMapEntry(i, entry) == common::kNoError; ++i)
    types[std::string(platform::PascalStringView(entry.extension))] =
        platform::PascalStringView(entry.MIMEType);
  Require(types == PlainTypes(text), "each extension has the type that plain reading finds");
}

}  // namespace

void Check(std::string_view input) {
  if (input.empty()) return;
  input[0] % 2 == 0 ? CheckSettings(input.substr(1)) : CheckGlobs(input.substr(1));
}

}  // namespace quillforth::fuzz
