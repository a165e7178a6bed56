// SPDX-License-Identifier: MIT
//
// The user's settings, some of them replaced for one run. Main thread.
#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

#include "platform/UserDefaults.h"

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

}  // namespace quillforth::terminal
