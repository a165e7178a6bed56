// SPDX-License-Identifier: MIT

#include "terminal/ObservedServices.h"

namespace quillforth::terminal {

platform::PageLoad ObservedPageLoader::load(const platform::URL& url) {
  platform::PageLoad load = loader_.load(url);
  outcome_ = load.data ? Outcome::loaded : Outcome::failed;
  failure_ = load.failure;
  return load;
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
