// SPDX-License-Identifier: MIT

#include "app/Preferences.h"

#include <algorithm>

namespace quillforth::app {

std::optional<bool> BooleanValue(const QVariant& stored) {
  switch (stored.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::QString:
      break;
    default:
      return std::nullopt;
  }
  const QString text = stored.toString().toLower();
  if (text == u"true" || text == u"1" || text == u"yes") return true;
  if (text == u"false" || text == u"0" || text == u"no") return false;
  return std::nullopt;
}

bool Preferences::read(const BooleanPreference& preference) const {
  userDefaults_.synchronize();
  const QVariant stored = userDefaults_.objectForKey(preference.key);
  // A value that is neither YES nor NO counts as the default. So a setting that is on by default goes off
  // only by a NO, and one that is off goes on only by a YES.
  return BooleanValue(stored).value_or(preference.defaultValue);
}

bool Preferences::bringApplicationToFront() const {
  return showStatusWindow() && read(kBringApplicationToFront);
}

bool Preferences::preserveFileCommentsWhenAggregatingFiles() const {
  return read(kPreserveFileCommentsWhenAggregatingFiles);
}

int Preferences::downloadsAhead() const {
  userDefaults_.synchronize();
  const qlonglong stored = userDefaults_.objectForKey(kDownloadsAheadKey).toLongLong();
  return static_cast<int>(std::clamp<qlonglong>(stored, 0, kMaxDownloadsAhead));
}

}  // namespace quillforth::app
