// SPDX-License-Identifier: MIT
//
// The user's stored settings. Main thread.
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

namespace quillforth::platform {

class UserDefaults {
 public:
  virtual ~UserDefaults() = default;
  /// Writes what is pending and takes in what others have stored. Cheap when nothing has changed.
  virtual void synchronize() = 0;
  /// An invalid value when the key is absent. A value is what is stored, and may have another type than the
  /// reader wants.
  [[nodiscard]] virtual QVariant objectForKey(const QString& key) = 0;
  virtual void setObject(const QString& key, const QVariant& value) = 0;
  virtual void removeObject(const QString& key) = 0;
};

}  // namespace quillforth::platform
