// SPDX-License-Identifier: MIT

#include "desktop/Activation.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

namespace quillforth::desktop {

namespace {

constexpr const char* kWaylandToken = "XDG_ACTIVATION_TOKEN";  // Qt looks there itself
constexpr const char* kToken = "quillforthActivationToken";    // property of the application

struct Screen {
  xcb_connection_t* connection;
  xcb_window_t root;
};

// Nothing on another platform than X11.
std::optional<Screen> X11Screen() {
  const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr || x11->connection() == nullptr) return std::nullopt;
  const xcb_setup_t* setup = xcb_get_setup(x11->connection());
  return Screen{x11->connection(), xcb_setup_roots_iterator(setup).data->root};
}

xcb_atom_t Atom(const Screen& screen, const char* name) {
  const auto cookie =
      xcb_intern_atom(screen.connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
      xcb_intern_atom_reply(screen.connection, cookie, nullptr), &std::free);
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void SendToRoot(const Screen& screen, const xcb_client_message_event_t& message, std::uint32_t mask) {
  xcb_send_event(screen.connection, 0, screen.root, mask, reinterpret_cast<const char*>(&message));
}

// Who asks for the focus.
constexpr std::uint32_t kFromApplication = 1;
constexpr std::uint32_t kFromUser = 2;

// Extended Window Manager Hints, "_NET_ACTIVE_WINDOW".
void AskForFocus(const Screen& screen, xcb_window_t window, std::uint32_t time, std::uint32_t source) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = window;
  message.type = Atom(screen, "_NET_ACTIVE_WINDOW");
  message.data.data32[0] = source;
  message.data.data32[1] = time;
  SendToRoot(screen, message, XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

// Startup Notification: a text with its final NUL, in pieces of 20 bytes.
void EndStartupSequence(const Screen& screen, xcb_window_t window, const QByteArray& startupID) {
  QByteArray quoted = startupID;
  quoted.replace('\\', "\\\\").replace('"', "\\\"");
  const QByteArray text = "remove: ID=\"" + quoted + "\"";
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 8;
  message.window = window;
  message.type = Atom(screen, "_NET_STARTUP_INFO_BEGIN");
  const xcb_atom_t next = Atom(screen, "_NET_STARTUP_INFO");
  constexpr qsizetype kPiece = sizeof(message.data.data8);
  for (qsizetype start = 0; start <= text.size(); start += kPiece) {
    std::fill(std::begin(message.data.data8), std::end(message.data.data8), std::uint8_t{0});
    const QByteArray piece = text.mid(start, kPiece);
    std::copy(piece.begin(), piece.end(), std::begin(message.data.data8));
    SendToRoot(screen, message, XCB_EVENT_MASK_PROPERTY_CHANGE);
    message.type = next;
  }
}

void ProveOnX11(const Screen& screen, xcb_window_t window, const QByteArray& startupID) {
  constexpr QByteArrayView kMark("_TIME");
  const qsizetype mark = startupID.lastIndexOf(kMark);
  bool isTime = false;
  const std::uint32_t time = startupID.mid(mark + kMark.size()).toUInt(&isTime);
  if (mark >= 0 && isTime) AskForFocus(screen, window, time, kFromApplication);
  EndStartupSequence(screen, window, startupID);
  xcb_flush(screen.connection);
}

// At most 16 KiB of it; empty where a window has none of the type.
QByteArray Property(const Screen& screen, xcb_window_t window, const char* name, xcb_atom_t type) {
  constexpr std::uint32_t kWords = 4096;
  const auto cookie = xcb_get_property(screen.connection, 0, window, Atom(screen, name), type, 0, kWords);
  const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
      xcb_get_property_reply(screen.connection, cookie, nullptr), &std::free);
  if (!reply || reply->type != type) return {};
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          xcb_get_property_value_length(reply.get())};
}

std::vector<std::uint32_t> Numbers(const QByteArray& property) {
  std::vector<std::uint32_t> numbers(static_cast<std::size_t>(property.size()) / sizeof(std::uint32_t));
  if (!numbers.empty()) std::memcpy(numbers.data(), property.data(), numbers.size() * sizeof(std::uint32_t));
  return numbers;
}

std::optional<xcb_window_t> WindowOf(const Screen& screen, const std::vector<std::int64_t>& processIDs,
                                     const QByteArray& title) {
  const xcb_atom_t utf8 = Atom(screen, "UTF8_STRING");
  std::vector<std::uint32_t> windows =
      Numbers(Property(screen, screen.root, "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW));
  std::reverse(windows.begin(), windows.end());
  std::optional<xcb_window_t> onTop;
  for (const xcb_window_t window : windows) {
    const std::vector<std::uint32_t> process =
        Numbers(Property(screen, window, "_NET_WM_PID", XCB_ATOM_CARDINAL));
    if (process.empty() || std::count(processIDs.begin(), processIDs.end(), process[0]) == 0) continue;
    if (Property(screen, window, "_NET_WM_NAME", utf8) == title) return window;
    if (!onTop) onTop = window;
  }
  return onTop;
}

}  // namespace

QString TakeActivationTokenOfStart() {
  if (!qEnvironmentVariableIsSet(kWaylandToken)) qputenv(kWaylandToken, QByteArray());
  const QString token = qEnvironmentVariable(kWaylandToken);
  return token.isEmpty() ? qEnvironmentVariable("DESKTOP_STARTUP_ID") : token;
}

void RememberActivation(const QString& token) {
  qApp->setProperty(kToken, token);
}

void ActivateWindow(QWidget& window) {
  const QByteArray token = qApp->property(kToken).toString().toUtf8();
  qApp->setProperty(kToken, QVariant());
  const std::optional<Screen> screen = X11Screen();
  if (screen && !token.isEmpty()) {
    ProveOnX11(*screen, static_cast<xcb_window_t>(window.winId()), token);
  } else if (!token.isEmpty() && QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) {
    qputenv(kWaylandToken, token);
  }
  window.activateWindow();
}

void BringForward(QWidget& window, const QString& activationToken) {
  if (!activationToken.isEmpty()) RememberActivation(activationToken);
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  window.raise();
  ActivateWindow(window);
}

// A window manager gives the keyboard to a window that is only restored. So this one is withdrawn
// (Inter-Client Communication Conventions, section 4.1.4), and comes back as one that nobody has asked for:
// "_NET_WM_USER_TIME" of the Extended Window Manager Hints is 0. It asks for its old place, or it would be
// given a new one.
void RestoreWithoutKeyboard(QWidget& window) {
  if (const std::optional<Screen> screen = X11Screen()) {
    xcb_unmap_notify_event_t message{};
    message.response_type = XCB_UNMAP_NOTIFY;
    message.event = screen->root;
    message.window = static_cast<xcb_window_t>(window.winId());
    xcb_send_event(screen->connection, 0, screen->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    constexpr std::uint32_t kNobody = 0;
    xcb_change_property(screen->connection, XCB_PROP_MODE_REPLACE, message.window,
                        Atom(*screen, "_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL, 32, 1, &kNobody);
  }
  window.windowHandle()->setFramePosition(window.pos());
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
}

void ActivateOtherWindow(const std::vector<std::int64_t>& processIDs, const QString& title) {
  const std::optional<Screen> screen = X11Screen();
  const auto window = screen ? WindowOf(*screen, processIDs, title.toUtf8()) : std::nullopt;
  if (!window) return;
  AskForFocus(*screen, *window, XCB_CURRENT_TIME, kFromUser);
  xcb_flush(screen->connection);
}

}  // namespace quillforth::desktop
