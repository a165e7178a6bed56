// SPDX-License-Identifier: MIT

#include "desktop/CompletionNotice.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QSignalSpy>

#include "tests/support/FakeHost.h"

namespace quillforth::tests {

class FakeNotifications final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

 public:
  QStringList capabilities{QStringLiteral("actions"), QStringLiteral("body")};

 public slots:
  QStringList GetCapabilities() { return capabilities; }
  uint Notify(const QString&, uint replaced, const QString&, const QString& summary, const QString& body,
              const QStringList& actions, const QVariantMap&, int) {
    emit called(QString::number(replaced) + u'|' + summary + u'|' + body + u'|' + actions.value(0));
    return 7;
  }

 signals:
  void called(const QString& call);
  void ActivationToken(uint id, const QString& token);
  void ActionInvoked(uint id, const QString& action);
};

TEST(CompletionNotice, TellsWhoIsNotLookingOfFailuresAndOfTheEnd) {
  FakeNotifications service;
  FakeUserDefaults defaults;
  bool isWorkLeft = true, isInFront = false;
  desktop::CompletionNotice notice({defaults, app::EnglishText, [&] { return isWorkLeft; },
                                    [&] { return isInFront; }, [] { return nullptr; }});
  QSignalSpy calls(&service, &FakeNotifications::called);
  const auto end = [&](bool hasFailed) {
    if (hasFailed) notice.downloadFailed({QStringLiteral("http://h/?a&b"), {}}, QStringLiteral("Why."));
    if (!hasFailed) notice.downloadFinished({});
    notice.controllerMovedOn();
  };
  const auto call = [&] { return calls.isEmpty() && !calls.wait(9999) ? QVariant() : calls.takeFirst()[0]; };

  end(true);  // there is no service, and so nothing
  auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("service"));
  bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), &service,
                     QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
  ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.Notifications")));
  end(true);
  EXPECT_EQ(call(), QStringLiteral("0|A download failed|Why.\nhttp://h/?a&b|default"));
  service.capabilities = {QStringLiteral("body"), QStringLiteral("body-markup")};
  end(true);
  EXPECT_EQ(call(), QStringLiteral("7|A download failed|Why.\nhttp://h/?a&amp;b|"));

  QSignalSpy activations(&notice, &desktop::CompletionNotice::activationRequested);
  emit service.ActionInvoked(8, QStringLiteral("default"));  // somebody else's
  emit service.ActivationToken(7, QStringLiteral("token"));
  emit service.ActionInvoked(7, QStringLiteral("default"));
  ASSERT_TRUE(activations.wait(9999) && activations.size() == 1);
  EXPECT_EQ(activations[0][0], QStringLiteral("token"));

  isInFront = true;
  end(true);
  isInFront = false;
  end(false);  // the queue goes on
  isWorkLeft = false;
  end(false);
  EXPECT_EQ(call(),
            QStringLiteral("7|The queue is done, with failures|Files downloaded: 2\nFailed downloads: 4|"));
  defaults.set("notifyWhenDone", false);
  end(true);
  defaults.set("notifyWhenDone", true);
  end(false);
  EXPECT_EQ(call(), QStringLiteral("7|The queue is done|Files downloaded: 1|"));
}

}  // namespace quillforth::tests

#include "CompletionNoticeTest.moc"
