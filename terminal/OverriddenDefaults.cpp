// SPDX-License-Identifier: MIT

#include "terminal/OverriddenDefaults.h"

namespace quillforth::terminal {

QVariant OverriddenDefaults::objectForKey(const QString& key) {
  const auto found = overrides_.constFind(key);
  return found != overrides_.constEnd() ? *found : defaults_.objectForKey(key);
}

}  // namespace quillforth::terminal
