// SPDX-License-Identifier: MIT
//
// Coming to the front where the desktop lets only those who were asked to.
//
// What proves it is a token that came with the request: on Wayland one of the xdg-activation protocol, on X11
// the identifier of a startup notification (freedesktop.org), which ends in "_TIME" and the time of the
// user's click. As toolkits do, it is kept in the environment, and serves once. Main thread.
#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

namespace quillforth::desktop {

/// The token that this process was started with, if any; makes room in the environment for later ones. To be
/// called before any other thread looks there, and before there is a QGuiApplication, which takes the token.
[[nodiscard]] QString TakeActivationTokenOfStart();

/// The token for the next activation.
void RememberActivation(const QString& token);

/// Activates a window that is shown.
void ActivateWindow(QWidget& window);

/// Shows a window, and brings it in front of those of other programs, by the leave that `activationToken`
/// stands for. Without a token the desktop may only mark it.
void BringForward(QWidget& window, const QString& activationToken);

/// Shows a minimised window again, and leaves the keyboard where it is as far as the window system lets a
/// program do this.
void RestoreWithoutKeyboard(QWidget& window);

/// Asks for a window of other programs to come forward because the user wants it: of the windows of these
/// processes the one with this title, else the one on top. Nothing happens on another platform than X11, nor
/// when there is none.
void ActivateOtherWindow(const std::vector<std::int64_t>& processIDs, const QString& title);

}  // namespace quillforth::desktop
