// SPDX-License-Identifier: MIT

#include "terminal/Settings.h"

#include <QFile>
#include <QJsonObject>
#include <QJsonValue>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "app/DestinationFolder.h"
#include "app/Preferences.h"
#include "terminal/Folders.h"
#include "terminal/Reporter.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

constexpr std::array kBooleanSettings{
    BooleanSetting{app::kShowStatusWindow, &app::Preferences::showStatusWindow,
                   "bring the window forward when work comes"},
    BooleanSetting{app::kBringApplicationToFront, &app::Preferences::bringApplicationToFront,
                   "and the program too; counts as no when showStatusWindow is no"},
    BooleanSetting{app::kSetCommentToLocationURL, &app::Preferences::setCommentToLocationURL,
                   "note on each file where it came from"},
    BooleanSetting{app::kOverwriteFilesBySameName, &app::Preferences::overwriteFilesBySameName,
                   "replace files instead of finding a free name"},
    BooleanSetting{app::kPreserveFileCommentsWhenAggregatingFiles,
                   &app::Preferences::preserveFileCommentsWhenAggregatingFiles,
                   "keep the notes when files are sorted"},
    BooleanSetting{app::kAlwaysPromptForOutputLocation, &app::Preferences::alwaysPromptForOutputLocation,
                   "ask for a folder each time"},
    BooleanSetting{app::kAggregateFiles, &app::Preferences::aggregateFiles,
                   "sort the destination folder by file type when the queue is done"},
    BooleanSetting{app::kShowAlertsWhenErrorsOccur, &app::Preferences::showAlertsWhenErrorsOccur,
                   "show a message for each download that fails"},
    BooleanSetting{app::kNotifyWhenDone, &app::Preferences::notifyWhenDone,
                   "show a notification when the queue is done, or a download failed, and no window of "
                   "quillforth(1) is in front"},
    BooleanSetting{app::kPlaySoundWhenDone, &app::Preferences::playSoundWhenDone, "play a sound then"},
    BooleanSetting{
        app::kSendReferer, &app::Preferences::sendReferer,
        "tell the server on which page a file was found; another server is told only where the page is from"},
    BooleanSetting{app::kChooseLinks, &app::Preferences::chooseLinks,
                   "let quillforth(1) ask which links of a page join the queue"},
    BooleanSetting{app::kAllowKeystrokesForBrowserURL, &app::Preferences::allowKeystrokesForBrowserURL,
                   "let quillforth(1) copy the address of Firefox with keystrokes, over the clipboard, when "
                   "it cannot be had otherwise"},
};
static_assert(kBooleanSettings.size() == app::kBooleanPreferences.size());

const BooleanSetting* FindBoolean(const QString& key) {
  const auto found = std::ranges::find_if(
      kBooleanSettings, [&key](const auto& setting) { return setting.preference.key == key; });
  return found == kBooleanSettings.end() ? nullptr : &*found;
}

SettingsError UnknownKey(const std::string& key) {
  std::string known;
  for (const BooleanSetting& setting : kBooleanSettings)
    known.append(setting.preference.key.data()).append(", ");
  return {"no setting is called \"" + key + "\"; there are " + known + app::kDownloadsAheadKey.data() +
              " and " + app::kDestinationDirectoryKey.data(),
          kExitUsage};
}

std::variant<Setting, SettingsError> MakeFolderSetting(const std::string& path,
                                                       platform::AliasManager& aliases) {
  const FolderAtPath folder = ExistingFolder(path);
  if (!folder.path) return SettingsError{folder.error};
  if (QString::fromStdString(*folder.path).toStdString() != *folder.path) {
    return SettingsError{*folder.path + ": not UTF-8"};
  }
  const std::optional<QByteArray> alias = aliases.newAlias(platform::FileReference(*folder.path));
  if (!alias) return SettingsError{path + ": cannot be examined"};
  return Setting{app::kDestinationDirectoryKey, *alias};
}

// It may be stored: it is found again wherever it is moved, perhaps under a shorter path.
void WarnOfLongFolder(const std::string& path, Output& errors) {
  const FolderAtPath folder = ExistingFolder(path);
  if (!folder.path || folder.path->size() <= app::kLongestUsedPath) return;
  const QString text = QStringLiteral(
      "the path of this folder is %1 bytes long; nothing is downloaded into one of more than %2");
  errors.write(NoticeText(text.arg(folder.path->size()).arg(app::kLongestUsedPath)));
}

}  // namespace

std::span<const BooleanSetting> BooleanSettings() {
  return kBooleanSettings;
}

std::optional<bool> BooleanFromText(const QString& text) {
  const QString lower = text.toLower();
  const auto isOneOf = [&lower](std::initializer_list<QLatin1String> words) {
    return std::ranges::find(words, lower) != words.end();
  };
  if (isOneOf({QLatin1String("yes"), QLatin1String("true"), QLatin1String("on"), QLatin1String("1")})) {
    return true;
  }
  if (isOneOf({QLatin1String("no"), QLatin1String("false"), QLatin1String("off"), QLatin1String("0")})) {
    return false;
  }
  return std::nullopt;
}

std::variant<Setting, SettingsError> MakeDownloadsAhead(const std::string& name, const std::string& value) {
  bool isNumber = false;
  const int number = QString::fromStdString(value).toInt(&isNumber);
  if (isNumber && number >= 0 && number <= app::kMaxDownloadsAhead) {
    return Setting{app::kDownloadsAheadKey, number};
  }
  return SettingsError{
      name + ": \"" + value + "\" is no number from 0 to " + std::to_string(app::kMaxDownloadsAhead),
      kExitUsage};
}

std::variant<Setting, SettingsError> MakeSetting(const std::string& key, const std::string& value,
                                                 platform::AliasManager& aliases) {
  const QString name = QString::fromStdString(key);
  if (name == app::kDestinationDirectoryKey) return MakeFolderSetting(value, aliases);
  if (name == app::kDownloadsAheadKey) return MakeDownloadsAhead(key, value);
  if (FindBoolean(name) == nullptr) return UnknownKey(key);
  const std::optional<bool> boolean = BooleanFromText(QString::fromStdString(value));
  if (!boolean) return SettingsError{key + ": \"" + value + "\" is neither yes nor no", kExitUsage};
  return Setting{name, *boolean};
}

std::optional<SettingsError> SettingsCommand::run(const SettingsArguments& arguments, Output& output,
                                                  Output& errors) {
  if (!arguments.key) {
    printAll(arguments.json, output);
    return std::nullopt;
  }
  const QString key = QString::fromStdString(*arguments.key);
  if (arguments.value) {
    const auto setting = MakeSetting(*arguments.key, *arguments.value, aliases_);
    if (const auto* error = std::get_if<SettingsError>(&setting)) return *error;
    if (key == app::kDestinationDirectoryKey) WarnOfLongFolder(*arguments.value, errors);
    return store(std::get<Setting>(setting));
  }
  const std::optional<QString> value = effectiveValue(key);
  if (!value) return UnknownKey(*arguments.key);
  if (arguments.unset) return unset(key);
  if (arguments.json) {
    print(key, true, output);
  } else {
    output.writeLine(Printable(*value).toUtf8());
  }
  return std::nullopt;
}

std::optional<SettingsError> SettingsCommand::store(const Setting& setting) {
  defaults_.setObject(setting.key, setting.value);
  defaults_.synchronize();
  return std::nullopt;
}

std::optional<SettingsError> SettingsCommand::unset(const QString& key) {
  defaults_.removeObject(key);
  defaults_.synchronize();
  return std::nullopt;
}

std::optional<QString> SettingsCommand::effectiveValue(const QString& key) {
  if (key == app::kDestinationDirectoryKey) {
    const auto folder = app::StoredOrSupportFolder(defaults_, aliases_, files_);
    return folder ? QFile::decodeName(folder->path().c_str()) : QString();
  }
  if (key == app::kDownloadsAheadKey) return QString::number(app::Preferences(defaults_).downloadsAhead());
  const BooleanSetting* setting = FindBoolean(key);
  if (setting == nullptr) return std::nullopt;
  const bool value = (app::Preferences(defaults_).*setting->read)();
  return value ? QStringLiteral("yes") : QStringLiteral("no");
}

void SettingsCommand::print(const QString& key, bool asJson, Output& output) {
  const QString origin =
      defaults_.objectForKey(key).isValid() ? QStringLiteral("stored") : QStringLiteral("default");
  const QString value = effectiveValue(key).value_or(QString());
  if (!asJson) {
    output.writeLine((key + u'\t' + Printable(value) + u'\t' + origin).toUtf8());
    return;
  }
  QJsonValue typed(value);
  if (FindBoolean(key) != nullptr) typed = value == u"yes";
  if (key == app::kDownloadsAheadKey) typed = value.toInt();
  output.writeLine(JsonLine(
      {{QStringLiteral("key"), key}, {QStringLiteral("value"), typed}, {QStringLiteral("origin"), origin}}));
}

void SettingsCommand::printAll(bool asJson, Output& output) {
  QStringList keys;
  for (const BooleanSetting& setting : kBooleanSettings) keys.append(setting.preference.key);
  keys << app::kDownloadsAheadKey << app::kDestinationDirectoryKey;
  for (const QString& key : keys) print(key, asJson, output);
}

}  // namespace quillforth::terminal
