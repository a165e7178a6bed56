// SPDX-License-Identifier: MIT
//
// How the program looks: its icon, and light or dark as the desktop prefers.
//
// The preference is asked of the settings portal (org.freedesktop.portal.Settings over the session bus),
// asynchronously, and followed while the program runs. Where a desktop's own theme draws the windows, or
// already has the right colours, nothing is changed. Main thread.
#pragma once

#include <QDBusMessage>
#include <QIcon>
#include <QObject>

namespace quillforth::desktop {

/// The name by which the session knows the program: its desktop entry, its icon, and its name on the bus.
inline constexpr const char* kApplicationID = "com.tessarysoftware.Quillforth";

/// The desktop's icon of the program, else the embedded drawing; sharp in every size.
[[nodiscard]] QIcon ProgramIcon();

/// The theme's icon of this name (one of the standard icon names of freedesktop.org), else a drawing
/// of our own in the colour of the text beside it.
[[nodiscard]] QIcon CommandIcon(const QString& name);

class Appearance final : public QObject {
  Q_OBJECT

 public:
  /// Begins to follow the desktop's preference. A QApplication exists.
  explicit Appearance(QObject* parent = nullptr);

 private slots:
  void takeChange(const QDBusMessage& change);

 private:
  void ask();
};

}  // namespace quillforth::desktop
