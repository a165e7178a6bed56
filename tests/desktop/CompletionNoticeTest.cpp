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

 public slots:
  QStringList GetCapabilities() { return capabilities; }
  uint Notify(const QString& /*program*/, uint replaced, const QString& /*icon*/, const QString& summary,
              const QString& body, const QStringList& actions, const QVariantMap& /*hints*/,
              int /*timeout*/) {
    emit called(QString::number(replaced) + u'|' + summary + u'|' + body + u'|' + actions.value(0));
    return 7;
  }

 signals:
  void called(const QString& call);
  void ActivationToken(uint id, const QString& token);
  void ActionInvoked(uint id, const QString& action);

 public:
  QStringList capabilities{QStringLiteral("actions"), QStringLiteral("body")};
};

namespace {

TEST(CompletionNotice, TellsWhoIsNotLookingOfFailuresAndOfTheEnd) {
  QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("service"));
  FakeNotifications service;
  FakeUserDefaults defaults;
  bool isWorkLeft = true, isInFront = false;
  desktop::CompletionNotice notice({defaults, app::EnglishText, [&] { return isWorkLeft; },
                                    [&] { return isInFront; }, [] { return nullptr; }});
  const auto fail = [&] {
    notice.downloadFailed({QStringLiteral("http://h/?a&b"), {}}, QStringLiteral("Why."));
    notice.controllerMovedOn();
  };
  fail();  // there is no service, and so nothing
  bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), &service,
                     QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
  ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.Notifications")));
  QSignalSpy calls(&service, &FakeNotifications::called);
  const auto nextCall = [&calls] {
    return calls.isEmpty() && !calls.wait(10'000) ? QString() : calls.takeFirst()[0].toString();
  };
  const auto settle = [&fail, &nextCall] {
    fail();
    return nextCall();
  };
  EXPECT_EQ(settle(), u"0|A download failed|Why.\nhttp://h/?a&b|default");
  service.capabilities = {QStringLiteral("body"), QStringLiteral("body-markup")};
  EXPECT_EQ(settle(), u"7|A download failed|Why.\nhttp://h/?a&amp;b|");

  QSignalSpy activations(&notice, &desktop::CompletionNotice::activationRequested);
  emit service.ActionInvoked(8, QStringLiteral("default"));  // somebody else's
  emit service.ActivationToken(7, QStringLiteral("token"));
  emit service.ActionInvoked(7, QStringLiteral("default"));
  ASSERT_TRUE(activations.wait(10'000) && activations.size() == 1);
  EXPECT_EQ(activations[0][0], QStringLiteral("token"));

  isInFront = true;
  fail();
  isInFront = false;
  notice.downloadFinished({});
  notice.controllerMovedOn();  // the queue goes on
  notice.downloadFinished({});
  isWorkLeft = false;
  notice.controllerMovedOn();
  EXPECT_EQ(nextCall(), u"7|The queue is done, with failures|Files downloaded: 2\nFailed downloads: 4|");
  defaults.set("notifyWhenDone", false);
  fail();
  defaults.set("notifyWhenDone", true);
  notice.downloadFinished({});
  notice.controllerMovedOn();
  EXPECT_EQ(nextCall(), u"7|The queue is done|Files downloaded: 1|");
}

}  // namespace
}  // namespace quillforth::tests

#include "CompletionNoticeTest.moc"
