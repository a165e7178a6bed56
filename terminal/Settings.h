// SPDX-License-Identifier: MIT
//
// The command `settings`, and what `get --set` makes of its arguments.
//
// Keys and their meaning are the controller's (app/Preferences.h); here they meet a person who types. Main
// thread.
#pragma once

#include <QString>
#include <QVariant>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>

#include "app/Preferences.h"
#include "platform/Alias.h"
#include "platform/FileManager.h"
#include "platform/UserDefaults.h"
#include "terminal/CommandLine.h"
#include "terminal/Output.h"

namespace quillforth::terminal {

/// What went wrong, and the exit status that it makes.
struct SettingsError {
  std::string message;
  int exitStatus = kExitFailure;
};

struct Setting {
  QString key;
  QVariant value;  ///< as it is stored
};

/// A setting that is yes or no.
struct BooleanSetting {
  app::BooleanPreference preference;
  bool (app::Preferences::*read)() const;
  const char* text;  ///< what it does, for people: plain ASCII
};
[[nodiscard]] std::span<const BooleanSetting> BooleanSettings();

/// yes, true, on and 1, no, false, off and 0, letter case apart; nothing for all else.
[[nodiscard]] std::optional<bool> BooleanFromText(const QString& text);

/// The number of downloads ahead that was typed; `name` is what the user calls it.
[[nodiscard]] std::variant<Setting, SettingsError> MakeDownloadsAhead(const std::string& name,
                                                                      const std::string& value);

/// The stored form of a typed value: a truth value, a number, or for `DestinationDirectory` the alias record
/// of an existing folder.
[[nodiscard]] std::variant<Setting, SettingsError> MakeSetting(const std::string& key,
                                                               const std::string& value,
                                                               platform::AliasManager& aliases);

class SettingsCommand {
 public:
  SettingsCommand(platform::UserDefaults& defaults, platform::AliasManager& aliases,
                  platform::FileManager& files)
      : defaults_(defaults), aliases_(aliases), files_(files) {}

  /// Prints or changes what `arguments` ask for; an error when it cannot. A warning goes to `errors`.
  [[nodiscard]] std::optional<SettingsError> run(const SettingsArguments& arguments, Output& output,
                                                 Output& errors);

 private:
  [[nodiscard]] std::optional<SettingsError> store(const Setting& setting);
  [[nodiscard]] std::optional<SettingsError> unset(const QString& key);
  /// "yes", "no", a number or a path; nothing for an unknown key.
  [[nodiscard]] std::optional<QString> effectiveValue(const QString& key);
  void print(const QString& key, bool asJson, Output& output);
  void printAll(bool asJson, Output& output);

  platform::UserDefaults& defaults_;
  platform::AliasManager& aliases_;
  platform::FileManager& files_;
};

}  // namespace quillforth::terminal
