// SPDX-License-Identifier: MIT

#include "desktop/Appearance.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QStyle>
#include <QToolTip>
#include <utility>

namespace quillforth::desktop {

namespace {

// Values of color-scheme.
constexpr uint kPrefersDark = 1;
constexpr uint kPrefersLight = 2;

QString Service() {
  return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString Path() {
  return QStringLiteral("/org/freedesktop/portal/desktop");
}

QString Interface() {
  return QStringLiteral("org.freedesktop.portal.Settings");
}

QString Group() {
  return QStringLiteral("org.freedesktop.appearance");
}

QString Key() {
  return QStringLiteral("color-scheme");
}

QPalette DarkPalette() {
  const QColor window(0x36, 0x39, 0x3d);
  const QColor text(0xe6, 0xe6, 0xe6);
  const QColor faded(0x98, 0x9b, 0x9f);
  const QColor highlight(0x2f, 0x7f, 0x8c);
  QPalette palette(QColor(0x4a, 0x4e, 0x53), window);  // shades of buttons follow from the first
  palette.setColor(QPalette::WindowText, text);
  palette.setColor(QPalette::Base, QColor(0x1c, 0x1d, 0x20));
  palette.setColor(QPalette::AlternateBase, QColor(0x26, 0x28, 0x2b));
  palette.setColor(QPalette::Text, text);
  palette.setColor(QPalette::ButtonText, text);
  palette.setColor(QPalette::BrightText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, faded);
  palette.setColor(QPalette::Highlight, highlight);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(0x6c, 0xc3, 0xd1));
  palette.setColor(QPalette::LinkVisited, QColor(0xb4, 0x9c, 0xd8));
  palette.setColor(QPalette::ToolTipBase, QColor(0x4a, 0x4e, 0x53));
  palette.setColor(QPalette::ToolTipText, text);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, faded);
  }
  palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x4a, 0x4d, 0x52));
  palette.setColor(QPalette::Disabled, QPalette::HighlightedText, faded);
  return palette;
}

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

void Apply(uint preference) {
  if (QApplication::style()->name() != u"fusion") return;  // a desktop's own style knows better
  QApplication::setPalette(QPalette());                    // what there was at first
  const bool isDark = IsDark(QApplication::palette());
  if (preference == kPrefersDark && !isDark) {
    QApplication::setPalette(DarkPalette());
  } else if (preference == kPrefersLight && isDark) {
    QApplication::setPalette(QApplication::style()->standardPalette());
  }
  QToolTip::setPalette(QApplication::palette());
}

// The portal wraps a value once or, in its older call, twice.
uint Preference(QVariant value) {
  for (int depth = 0; depth < 2 && value.canConvert<QDBusVariant>(); ++depth) {
    value = value.value<QDBusVariant>().variant();
  }
  return value.toUInt();
}

/// A drawing whose shape alone counts. It is read when it is painted first: what reads drawings is a plugin,
/// and a theme that has the icon spares its loading.
class ShapeIcon final : public QIconEngine {
 public:
  explicit ShapeIcon(QString file) : file_(std::move(file)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const qreal ratio = painter->device()->devicePixelRatio();
    painter->drawPixmap(rect, pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state));
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) override {
    const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
    if (drawing_.isNull()) drawing_ = QIcon(file_);
    QPixmap shape = drawing_.pixmap(size, 1.0);
    QPainter painter(&shape);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(shape.rect(), QGuiApplication::palette().color(group, role));
    return shape;
  }
  [[nodiscard]] QIconEngine* clone() const override { return new ShapeIcon(file_); }

 private:
  const QString file_;
  QIcon drawing_;
};

}  // namespace

QIcon CommandIcon(const QString& name) {
  return QIcon::fromTheme(name, QIcon(new ShapeIcon(QStringLiteral(":/icons/%1.svg").arg(name))));
}

QIcon ProgramIcon() {
  return QIcon::fromTheme(QString::fromLatin1(kApplicationID), QIcon(QStringLiteral(":/icons/128x128.png")));
}

Appearance::Appearance(QObject* parent) : QObject(parent) {
  QDBusConnection::sessionBus().connect(Service(), Path(), Interface(), QStringLiteral("SettingChanged"),
                                        this, SLOT(takeChange(QDBusMessage)));
  ask();
}

void Appearance::ask() {
  QDBusMessage message =
      QDBusMessage::createMethodCall(Service(), Path(), Interface(), QStringLiteral("Read"));
  message << Group() << Key();
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher] {
    watcher->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (!reply.isError()) Apply(Preference(reply.value().variant()));
  });
}

void Appearance::takeChange(const QDBusMessage& change) {
  const QVariantList arguments = change.arguments();
  if (arguments.size() == 3 && arguments[0] == Group() && arguments[1] == Key()) {
    Apply(Preference(arguments[2]));
  }
}

}  // namespace quillforth::desktop
