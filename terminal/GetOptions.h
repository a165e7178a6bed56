// SPDX-License-Identifier: MIT
//
// What the options of `get` come to: everything about them that is checked before anything is fetched. Main
// thread.
#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/LinkFilter.h"
#include "platform/Alias.h"
#include "platform/UserDefaults.h"
#include "terminal/CommandLine.h"
#include "terminal/InputFile.h"
#include "terminal/Settings.h"

namespace quillforth::terminal {

/// The user's settings, some of them replaced for the life of this object; nothing of that is stored.
class OverriddenDefaults final : public platform::UserDefaults {
 public:
  OverriddenDefaults(platform::UserDefaults& defaults, QHash<QString, QVariant> overrides)
      : defaults_(defaults), overrides_(std::move(overrides)) {}

  void synchronize() override { defaults_.synchronize(); }
  [[nodiscard]] QVariant objectForKey(const QString& key) override;
  void setObject(const QString& key, const QVariant& value) override { defaults_.setObject(key, value); }
  void removeObject(const QString& key) override { defaults_.removeObject(key); }

 private:
  platform::UserDefaults& defaults_;
  QHash<QString, QVariant> overrides_;
};

/// What a run needs besides the host's services.
struct GetSettings {
  GetArguments arguments;
  std::vector<GivenURL> urls;            ///< usable ones only
  std::vector<GivenURL> refused;         ///< texts that are none, as they were given
  QHash<QString, QVariant> preferences;  ///< replaced for this run
  app::LinkFilter filter;
  int retries = 0;
  std::chrono::milliseconds wait{0};
};

struct GetOptions {
  GetSettings run;
  QString destination;               ///< null: folder panels ask
  std::vector<std::string> cookies;  ///< lines of Netscape's form
  std::vector<std::pair<std::string, std::string>> headers;
  std::string referrer;  ///< for every request; empty: the request's own
  bool tellsWholeReferrer = false;
  std::int64_t maxBytesASecond = 0;  ///< 0: no limit
};

/// The rules that a filter is made of.
[[nodiscard]] std::optional<SettingsError> MakeFilter(const FilterArguments& arguments,
                                                      app::LinkFilter& filter);

/// The URLs of the command line, then those of the lists; typed texts are mended. What is no URL is put into
/// `refused`.
[[nodiscard]] std::optional<SettingsError> TakeURLs(const GetArguments& arguments, GetSettings& run);

/// Whether the list of what is left can be written. That happens when all else is done, so it has to be
/// certain before.
[[nodiscard]] std::optional<SettingsError> CheckRest(const GetArguments& arguments);

/// All other options. Makes the destination folder, but not for a dry run. `defaults`: the stored settings.
[[nodiscard]] std::optional<SettingsError> TakeOptions(const GetArguments& arguments,
                                                       platform::AliasManager& aliases,
                                                       platform::UserDefaults& defaults, GetOptions& options);

}  // namespace quillforth::terminal
