// SPDX-License-Identifier: MIT
//
// What the program offers on the session bus, under the name com.tessarysoftware.Quillforth:
//
//   /com/tessarysoftware/Quillforth   org.freedesktop.Application (Desktop Entry Specification)
//                                     com.tessarysoftware.Quillforth: GetURL, DownloadText
//   /KRunner                          org.kde.krunner1: a typed URL can be downloaded
//
// Every call is answered at once, while its work waits for its turn. Calls with texts that are too long, too
// many or no URIs get org.freedesktop.DBus.Error.InvalidArgs; when too much waits they get
// org.freedesktop.DBus.Error.LimitsExceeded. Main thread.
#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QList>
#include <QVariantMap>

#include "desktop/Request.h"

namespace quillforth::desktop {

class BusService final : public QObject {
 public:
  /// `handler` outlives this.
  explicit BusService(RequestHandler& handler);
  ~BusService() override;
  BusService(const BusService&) = delete;
  BusService& operator=(const BusService&) = delete;

  enum class Outcome {
    isNamed,      ///< calls come from now on
    isNameTaken,  ///< another instance has it
    noBus,
  };
  /// Takes the name; may be called again as long as that is taken.
  [[nodiscard]] Outcome begin();
  /// Asks the instance that has the name. True when it has taken `request`, which is one that a command line
  /// can make; false also when it does not answer within seconds.
  [[nodiscard]] static bool handOver(const Request& request);

  /// Hands `request` on; `call`, which sent it, gets an error unless it is taken.
  void take(const Request& request, const QDBusMessage& call);

 private:
  RequestHandler& handler_;
  QDBusConnection connection_;
  QObject application_;  // what the objects on the bus hang on
  QObject runner_;
};

class ApplicationAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  ApplicationAdaptor(BusService& service, QObject& object)
      : QDBusAbstractAdaptor(&object), service_(service) {}

 public Q_SLOTS:
  // NOLINTBEGIN(readability-identifier-naming) names of the bus
  void Activate(const QVariantMap& platform_data, const QDBusMessage& call);
  void Open(const QStringList& uris, const QVariantMap& platform_data, const QDBusMessage& call);
  void ActivateAction(const QString& action_name, const QVariantList& parameter,
                      const QVariantMap& platform_data, const QDBusMessage& call);
  // NOLINTEND(readability-identifier-naming)

 private:
  BusService& service_;
};

class DownloadAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.tessarysoftware.Quillforth")

 public:
  DownloadAdaptor(BusService& service, QObject& object) : QDBusAbstractAdaptor(&object), service_(service) {}

 public Q_SLOTS:
  // NOLINTBEGIN(readability-identifier-naming) names of the bus
  void GetURL(const QString& url, const QDBusMessage& call);
  void DownloadText(const QString& text, const QDBusMessage& call);
  // NOLINTEND(readability-identifier-naming)

 private:
  BusService& service_;
};

/// One thing that KRunner shows: (sssuda{sv}) on the bus.
struct RunnerMatch {
  QString identifier;
  QString text;
  QString iconName;
  quint32 category = 0;
  double relevance = 0;  ///< 0 to 1
  QVariantMap properties;
};
QDBusArgument& operator<<(QDBusArgument& argument, const RunnerMatch& match);
const QDBusArgument& operator>>(const QDBusArgument& argument, RunnerMatch& match);

/// What can be done with a match: (sss) on the bus.
struct RunnerAction {
  QString identifier;
  QString text;
  QString iconName;
};
QDBusArgument& operator<<(QDBusArgument& argument, const RunnerAction& action);
const QDBusArgument& operator>>(const QDBusArgument& argument, RunnerAction& action);

class RunnerAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.krunner1")

 public:
  RunnerAdaptor(BusService& service, QObject& object);

 public Q_SLOTS:
  // NOLINTBEGIN(readability-identifier-naming) names of the bus
  [[nodiscard]] QList<quillforth::desktop::RunnerMatch> Match(const QString& query);
  [[nodiscard]] QList<quillforth::desktop::RunnerAction> Actions();
  void Run(const QString& matchId, const QString& actionId, const QDBusMessage& call);
  // NOLINTEND(readability-identifier-naming)

 private:
  BusService& service_;
};

}  // namespace quillforth::desktop

Q_DECLARE_METATYPE(quillforth::desktop::RunnerMatch)
Q_DECLARE_METATYPE(quillforth::desktop::RunnerAction)
