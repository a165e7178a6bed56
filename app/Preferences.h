// SPDX-License-Identifier: MIT
//
// The boolean settings, one reader a key.
//
// Every reader synchronizes the user defaults first, so that a change made elsewhere counts at once. Nothing
// here writes: that is up to whoever lets the user change a setting. Main thread.
#pragma once

#include <QString>
#include <QVariant>
#include <array>
#include <optional>

#include "platform/UserDefaults.h"

namespace quillforth::app {

struct BooleanPreference {
  QLatin1String key;
  bool defaultValue;
};

/// All boolean settings, with what an absent key means.
inline constexpr std::array<BooleanPreference, 8> kBooleanPreferences{{
    {QLatin1String("showStatusWindow"), true},
    {QLatin1String("bringApplicationToFront"), true},
    {QLatin1String("setCommentToLocationURL"), true},
    {QLatin1String("overwriteFilesBySameName"), false},
    {QLatin1String("preserveFileCommentsWhenAggregatingFiles"), false},
    {QLatin1String("alwaysPromptForOutputLocation"), false},
    {QLatin1String("aggregateFiles"), false},
    {QLatin1String("showAlertsWhenErrorsOccur"), false},
}};

/// Holds the alias record of the folder that the user chose.
inline constexpr QLatin1String kDestinationDirectoryKey("DestinationDirectory");

/// YES for true, 1 and yes, NO for false, 0 and no, letter case apart; nothing for everything else.
[[nodiscard]] std::optional<bool> BooleanValue(const QVariant& stored);

class Preferences {
 public:
  explicit Preferences(platform::UserDefaults& userDefaults) : userDefaults_(userDefaults) {}

  [[nodiscard]] bool showStatusWindow() const;
  /// NO whenever `showStatusWindow` is NO; its own key is then not looked at.
  [[nodiscard]] bool bringApplicationToFront() const;
  [[nodiscard]] bool setCommentToLocationURL() const;
  [[nodiscard]] bool overwriteFilesBySameName() const;
  [[nodiscard]] bool preserveFileCommentsWhenAggregatingFiles() const;
  [[nodiscard]] bool alwaysPromptForOutputLocation() const;
  [[nodiscard]] bool aggregateFiles() const;
  [[nodiscard]] bool showAlertsWhenErrorsOccur() const;

 private:
  [[nodiscard]] bool read(const BooleanPreference& preference) const;

  platform::UserDefaults& userDefaults_;
};

}  // namespace quillforth::app
