// SPDX-License-Identifier: MIT

#include "terminal/Settings.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "app/DestinationFolder.h"
#include "app/Preferences.h"
#include "fileops/FolderItems.h"
#include "terminal/Folders.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

struct BooleanReader {
  QLatin1String key;
  bool (app::Preferences::*read)() const;
};

constexpr std::array kReaders{
    BooleanReader{app::kShowStatusWindow.key, &app::Preferences::showStatusWindow},
    BooleanReader{app::kBringApplicationToFront.key, &app::Preferences::bringApplicationToFront},
    BooleanReader{app::kSetCommentToLocationURL.key, &app::Preferences::setCommentToLocationURL},
    BooleanReader{app::kOverwriteFilesBySameName.key, &app::Preferences::overwriteFilesBySameName},
    BooleanReader{app::kPreserveFileCommentsWhenAggregatingFiles.key,
                  &app::Preferences::preserveFileCommentsWhenAggregatingFiles},
    BooleanReader{app::kAlwaysPromptForOutputLocation.key, &app::Preferences::alwaysPromptForOutputLocation},
    BooleanReader{app::kAggregateFiles.key, &app::Preferences::aggregateFiles},
    BooleanReader{app::kShowAlertsWhenErrorsOccur.key, &app::Preferences::showAlertsWhenErrorsOccur},
    BooleanReader{app::kNotifyWhenDone.key, &app::Preferences::notifyWhenDone},
    BooleanReader{app::kPlaySoundWhenDone.key, &app::Preferences::playSoundWhenDone},
    BooleanReader{app::kSendReferer.key, &app::Preferences::sendReferer},
    BooleanReader{app::kAllowKeystrokesForBrowserURL.key, &app::Preferences::allowKeystrokesForBrowserURL},
};
static_assert(kReaders.size() == app::kBooleanPreferences.size());

const BooleanReader* FindReader(const QString& key) {
  const auto found = std::ranges::find_if(kReaders, [&key](const auto& reader) { return reader.key == key; });
  return found == kReaders.end() ? nullptr : &*found;
}

SettingsError UnknownKey(const std::string& key) {
  return {"no setting is called \"" + key + "\"", kExitUsage};
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

}  // namespace

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
  if (FindReader(name) == nullptr) return UnknownKey(key);
  const std::optional<bool> boolean = BooleanFromText(QString::fromStdString(value));
  if (!boolean) return SettingsError{key + ": \"" + value + "\" is neither yes nor no", kExitUsage};
  return Setting{name, *boolean};
}

std::optional<SettingsError> SettingsCommand::run(const SettingsArguments& arguments, Output& output) {
  if (!arguments.key) {
    printAll(output);
    return std::nullopt;
  }
  const QString key = QString::fromStdString(*arguments.key);
  if (arguments.value) {
    const auto setting = MakeSetting(*arguments.key, *arguments.value, aliases_);
    if (const auto* error = std::get_if<SettingsError>(&setting)) return *error;
    return store(std::get<Setting>(setting));
  }
  const std::optional<QString> value = effectiveValue(key);
  if (!value) return UnknownKey(*arguments.key);
  if (arguments.unset) return unset(key);
  output.writeLine(Printable(*value).toUtf8());
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
    std::optional<platform::FileReference> folder = app::StoredFolder(defaults_, aliases_, key);
    if (!folder) folder = fileops::GetSupportFolder(files_);
    return folder ? QFile::decodeName(folder->path().c_str()) : QString();
  }
  if (key == app::kDownloadsAheadKey) return QString::number(app::Preferences(defaults_).downloadsAhead());
  const BooleanReader* reader = FindReader(key);
  if (reader == nullptr) return std::nullopt;
  const bool value = (app::Preferences(defaults_).*reader->read)();
  return value ? QStringLiteral("yes") : QStringLiteral("no");
}

void SettingsCommand::printAll(Output& output) {
  QStringList keys;
  for (const BooleanReader& reader : kReaders) keys.append(reader.key);
  keys << app::kDownloadsAheadKey << app::kDestinationDirectoryKey;
  for (const QString& key : keys) {
    const QString origin =
        defaults_.objectForKey(key).isValid() ? QStringLiteral("stored") : QStringLiteral("default");
    const QString value = Printable(effectiveValue(key).value_or(QString()));
    output.writeLine((key + u'\t' + value + u'\t' + origin).toUtf8());
  }
}

}  // namespace quillforth::terminal
