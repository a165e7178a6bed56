// SPDX-License-Identifier: MIT

#include "terminal/ObservedServices.h"

namespace quillforth::terminal {

std::optional<QByteArray> ObservedPageLoader::resourceData(const platform::URL& url) {
  std::optional<QByteArray> data = loader_.resourceData(url);
  outcome_ = data ? Outcome::loaded : Outcome::failed;
  return data;
}

platform::NetworkStatus ObservedNetwork::copyNetworkStatusPassively() {
  if (isAssumedUp_) return platform::NetworkStatus::connectionUp;
  const platform::NetworkStatus status = network_.copyNetworkStatusPassively();
  if (status != platform::NetworkStatus::connectionUp) ++refusals_;
  return status;
}

QVariant OverriddenDefaults::objectForKey(const QString& key) {
  const auto found = overrides_.constFind(key);
  return found != overrides_.constEnd() ? *found : defaults_.objectForKey(key);
}

}  // namespace quillforth::terminal
