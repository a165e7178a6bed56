// SPDX-License-Identifier: MIT
//
// Services that pass everything on and let a run of `get` see what happens.
//
// The controller shows its work in outlets and says nothing else; a front end without a watching user must
// tell the fate of every URL. Each of these stands between the controller and the real service. Main thread.
#pragma once

#include <QHash>
#include <QString>
#include <QVariant>

#include "platform/NetworkDiagnostics.h"
#include "platform/PageLoader.h"
#include "platform/UserDefaults.h"

namespace quillforth::terminal {

/// Remembers how the latest load went.
class ObservedPageLoader final : public platform::PageLoader {
 public:
  explicit ObservedPageLoader(platform::PageLoader& loader) : loader_(loader) {}

  enum class Outcome { notAsked, failed, loaded };
  [[nodiscard]] platform::PageLoad load(const platform::URL& url) override;
  [[nodiscard]] Outcome outcome() const { return outcome_; }
  /// Of the latest load.
  [[nodiscard]] const QString& failure() const { return failure_; }
  void forgetOutcome() { outcome_ = Outcome::notAsked; }

 private:
  platform::PageLoader& loader_;
  Outcome outcome_ = Outcome::notAsked;
  QString failure_;
};

/// Counts the refusals, each of which costs the controller a URL.
class ObservedNetwork final : public platform::NetworkDiagnostics {
 public:
  /// `isAssumedUp`: the network is never asked.
  ObservedNetwork(platform::NetworkDiagnostics& network, bool isAssumedUp)
      : network_(network), isAssumedUp_(isAssumedUp) {}

  platform::NetworkStatus copyNetworkStatusPassively() override;
  void diagnoseProblemInteractively() override { network_.diagnoseProblemInteractively(); }
  [[nodiscard]] int refusals() const { return refusals_; }

 private:
  platform::NetworkDiagnostics& network_;
  bool isAssumedUp_;
  int refusals_ = 0;
};

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
