// SPDX-License-Identifier: MIT
//
// The settings: booleans and a number, with one reader for each key.
//
// Every reader synchronizes the user defaults first, so that a change made elsewhere counts at once. Nothing
// here writes a setting. Main thread.
#pragma once

#include <QString>
#include <QVariant>
#include <array>
#include <optional>

#include "platform/UserDefaults.h"

namespace quillforth::app {

struct BooleanPreference {
  QLatin1String key;
  bool defaultValue;  ///< what an absent key means
};

inline constexpr BooleanPreference kShowStatusWindow{QLatin1String("showStatusWindow"), true};
inline constexpr BooleanPreference kBringApplicationToFront{QLatin1String("bringApplicationToFront"), true};
inline constexpr BooleanPreference kSetCommentToLocationURL{QLatin1String("setCommentToLocationURL"), true};
inline constexpr BooleanPreference kOverwriteFilesBySameName{QLatin1String("overwriteFilesBySameName"),
                                                             false};
inline constexpr BooleanPreference kPreserveFileCommentsWhenAggregatingFiles{
    QLatin1String("preserveFileCommentsWhenAggregatingFiles"), false};
inline constexpr BooleanPreference kAlwaysPromptForOutputLocation{
    QLatin1String("alwaysPromptForOutputLocation"), false};
inline constexpr BooleanPreference kAggregateFiles{QLatin1String("aggregateFiles"), false};
inline constexpr BooleanPreference kShowAlertsWhenErrorsOccur{QLatin1String("showAlertsWhenErrorsOccur"),
                                                              false};
// These two are for a front end with windows: the user may be looking elsewhere.
inline constexpr BooleanPreference kNotifyWhenDone{QLatin1String("notifyWhenDone"), true};
inline constexpr BooleanPreference kPlaySoundWhenDone{QLatin1String("playSoundWhenDone"), true};

/// Tells servers on which page a file was found.
inline constexpr BooleanPreference kSendReferer{QLatin1String("sendReferer"), false};

/// Lets the user choose which links of a page join the queue. For a front end with windows, too.
inline constexpr BooleanPreference kChooseLinks{QLatin1String("chooseLinks"), false};

/// Lets the script for Firefox type into its window and read the clipboard, if Firefox does not say its
/// address in another way.
inline constexpr BooleanPreference kAllowKeystrokesForBrowserURL{
    QLatin1String("allowKeystrokesForBrowserURL"), false};

/// All boolean settings.
inline constexpr std::array kBooleanPreferences{kShowStatusWindow,
                                                kBringApplicationToFront,
                                                kSetCommentToLocationURL,
                                                kOverwriteFilesBySameName,
                                                kPreserveFileCommentsWhenAggregatingFiles,
                                                kAlwaysPromptForOutputLocation,
                                                kAggregateFiles,
                                                kShowAlertsWhenErrorsOccur,
                                                kNotifyWhenDone,
                                                kPlaySoundWhenDone,
                                                kSendReferer,
                                                kChooseLinks,
                                                kAllowKeystrokesForBrowserURL};

/// How many URLs of the queue are asked for while the one before them is downloaded.
inline constexpr QLatin1String kDownloadsAheadKey("downloadsAhead");
inline constexpr int kMaxDownloadsAhead = 8;

/// Holds the alias record of the folder that the user chose.
inline constexpr QLatin1String kDestinationDirectoryKey("DestinationDirectory");

/// YES for true, 1 and yes, NO for false, 0 and no, in any letter case; nothing for everything else.
[[nodiscard]] std::optional<bool> BooleanValue(const QVariant& stored);

class Preferences {
 public:
  explicit Preferences(platform::UserDefaults& userDefaults) : userDefaults_(userDefaults) {}

  [[nodiscard]] bool showStatusWindow() const { return read(kShowStatusWindow); }
  /// NO whenever `showStatusWindow` is NO; its own key is then not looked at.
  [[nodiscard]] bool bringApplicationToFront() const;
  [[nodiscard]] bool setCommentToLocationURL() const { return read(kSetCommentToLocationURL); }
  [[nodiscard]] bool overwriteFilesBySameName() const { return read(kOverwriteFilesBySameName); }
  [[nodiscard]] bool preserveFileCommentsWhenAggregatingFiles() const;
  [[nodiscard]] bool alwaysPromptForOutputLocation() const { return read(kAlwaysPromptForOutputLocation); }
  [[nodiscard]] bool aggregateFiles() const { return read(kAggregateFiles); }
  [[nodiscard]] bool showAlertsWhenErrorsOccur() const { return read(kShowAlertsWhenErrorsOccur); }
  [[nodiscard]] bool notifyWhenDone() const { return read(kNotifyWhenDone); }
  [[nodiscard]] bool playSoundWhenDone() const { return read(kPlaySoundWhenDone); }
  [[nodiscard]] bool sendReferer() const { return read(kSendReferer); }
  [[nodiscard]] bool chooseLinks() const { return read(kChooseLinks); }
  [[nodiscard]] bool allowKeystrokesForBrowserURL() const { return read(kAllowKeystrokesForBrowserURL); }
  /// 0 to `kMaxDownloadsAhead`, the nearest to what is stored; 0 when that is no number.
  [[nodiscard]] int downloadsAhead() const;

  /// The stored value of this setting alone, even where another setting overrides it.
  [[nodiscard]] bool read(const BooleanPreference& preference) const;

 private:
  platform::UserDefaults& userDefaults_;
};

}  // namespace quillforth::app
