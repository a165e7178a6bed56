// SPDX-License-Identifier: MIT

#include "desktop/BusService.h"

#include <QDBusConnectionInterface>
#include <QDBusMetaType>

#include "platform/URL.h"

namespace quillforth::desktop {

namespace {

QString Name() {
  return QStringLiteral("com.tessarysoftware.Quillforth");
}

// The address without blanks, when the program can download from there; null otherwise.
QString DownloadableURL(const QString& text) {
  if (text.size() > Request::kMaxTextLength) return {};
  const std::optional<platform::URL> url = platform::URL::URLWithString(text.trimmed());
  if (!url || url->host().isEmpty()) return {};
  const QString scheme = url->scheme();
  for (const char* known : {"http", "https", "ftp"}) {
    if (scheme == QLatin1StringView(known)) return url->absoluteString();
  }
  return {};
}

}  // namespace

BusService::BusService(RequestHandler& handler)
    : handler_(handler), connection_(QDBusConnection::sessionBus()) {
  new ApplicationAdaptor(*this, application_);
  new DownloadAdaptor(*this, application_);
  new RunnerAdaptor(*this, runner_);
}

BusService::~BusService() {
  if (connection_.isConnected()) connection_.unregisterService(Name());
}

bool BusService::begin() {
  return connection_.isConnected() &&
         connection_.registerObject(QStringLiteral("/com/tessarysoftware/Quillforth"), &application_) &&
         connection_.registerObject(QStringLiteral("/KRunner"), &runner_) &&
         connection_.interface()->registerService(Name()).value() ==
             QDBusConnectionInterface::ServiceRegistered;
}

void BusService::take(const Request& request, const QDBusMessage& call) {
  const auto refuse = [&](QDBusError::ErrorType error, const QString& reason) {
    call.setDelayedReply(true);
    connection_.send(call.createErrorReply(error, reason));
  };
  if (const QString fault = Fault(request); !fault.isNull()) return refuse(QDBusError::InvalidArgs, fault);
  switch (handler_.take(request)) {
    case RequestHandler::Answer::taken:
      return;
    case RequestHandler::Answer::tooBusy:
      return refuse(QDBusError::LimitsExceeded, QStringLiteral("too much waits already"));
    case RequestHandler::Answer::isQuitting:
      return refuse(QDBusError::Disconnected, QStringLiteral("the program ends"));
  }
}

void ApplicationAdaptor::Activate(const QVariantMap& platform_data, const QDBusMessage& call) {
  service_.take({Request::Kind::activate, {}, ActivationTokenIn(platform_data)}, call);
}

void ApplicationAdaptor::Open(const QStringList& uris, const QVariantMap& platform_data,
                              const QDBusMessage& call) {
  service_.take({Request::Kind::open, uris, ActivationTokenIn(platform_data)}, call);
}

void ApplicationAdaptor::ActivateAction(const QString& action_name, const QVariantList& /*parameter*/,
                                        const QVariantMap& platform_data, const QDBusMessage& call) {
  if (action_name == QStringLiteral("download-selection")) {
    return service_.take({Request::Kind::downloadSelection, {}, ActivationTokenIn(platform_data)}, call);
  }
  call.setDelayedReply(true);
  QDBusConnection::sessionBus().send(
      call.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("there is no such action")));
}

void DownloadAdaptor::GetURL(const QString& url, const QDBusMessage& call) {
  service_.take({Request::Kind::getURL, {url}}, call);
}

void DownloadAdaptor::DownloadText(const QString& text, const QDBusMessage& call) {
  service_.take({Request::Kind::downloadText, {text}}, call);
}

QDBusArgument& operator<<(QDBusArgument& argument, const RunnerMatch& match) {
  argument.beginStructure();
  argument << match.identifier << match.text << match.iconName << match.category << match.relevance
           << match.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, RunnerMatch& match) {
  argument.beginStructure();
  argument >> match.identifier >> match.text >> match.iconName >> match.category >> match.relevance >>
      match.properties;
  argument.endStructure();
  return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const RunnerAction& action) {
  argument.beginStructure();
  argument << action.identifier << action.text << action.iconName;
  argument.endStructure();
  return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, RunnerAction& action) {
  argument.beginStructure();
  argument >> action.identifier >> action.text >> action.iconName;
  argument.endStructure();
  return argument;
}

RunnerAdaptor::RunnerAdaptor(BusService& service, QObject& object)
    : QDBusAbstractAdaptor(&object), service_(service) {
  qDBusRegisterMetaType<RunnerMatch>();
  qDBusRegisterMetaType<QList<RunnerMatch>>();
  qDBusRegisterMetaType<RunnerAction>();
  qDBusRegisterMetaType<QList<RunnerAction>>();
}

QList<RunnerMatch> RunnerAdaptor::Match(const QString& query) {
  constexpr quint32 kExactMatch = 100;
  const QString url = DownloadableURL(query);
  if (url.isNull()) return {};
  return {{url,
           tr("Download %1 with Quillforth").arg(platform::WithoutCredentials(url)),
           Name(),
           kExactMatch,
           1.0,
           {}}};
}

QList<RunnerAction> RunnerAdaptor::Actions() {
  return {};
}

void RunnerAdaptor::Run(const QString& matchId, const QString& /*actionId*/, const QDBusMessage& call) {
  const QString url = DownloadableURL(matchId);
  service_.take({Request::Kind::downloadText, url.isNull() ? QStringList() : QStringList(url)}, call);
}

}  // namespace quillforth::desktop
