// SPDX-License-Identifier: MIT

#include "desktop/BusService.h"

#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusReply>

#include "platform/URL.h"

namespace quillforth::desktop {

namespace {

QString Name() {
  return QStringLiteral("com.tessarysoftware.Quillforth");
}

QString ObjectPath() {
  return QStringLiteral("/com/tessarysoftware/Quillforth");
}

const QLatin1StringView kTokenKey("activation-token");
const QLatin1StringView kDownloadSelection("download-selection");
constexpr int kMillisecondsToAnswer = 5000;

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
  connection_.registerObject(ObjectPath(), &application_);
  connection_.registerObject(QStringLiteral("/KRunner"), &runner_);
}

BusService::~BusService() {
  if (connection_.isConnected()) connection_.unregisterService(Name());
}

BusService::Outcome BusService::begin() {
  if (!connection_.isConnected()) return Outcome::noBus;
  const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
      connection_.interface()->registerService(Name());
  if (!reply.isValid()) return Outcome::noBus;
  return reply.value() == QDBusConnectionInterface::ServiceRegistered ? Outcome::isNamed
                                                                      : Outcome::isNameTaken;
}

bool BusService::handOver(const Request& request) {
  const QVariantMap platformData{{kTokenKey, request.activationToken}};
  const auto call = [](const char* method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        Name(), ObjectPath(), QStringLiteral("org.freedesktop.Application"), QString::fromLatin1(method));
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return QDBusConnection::sessionBus().call(message, QDBus::Block, kMillisecondsToAnswer).type() ==
           QDBusMessage::ReplyMessage;
  };
  switch (request.kind) {
    case Request::Kind::activate:
      return call("Activate", {platformData});
    case Request::Kind::open:
      return call("Open", {request.texts, platformData});
    case Request::Kind::downloadSelection:
      return call("ActivateAction", {kDownloadSelection, QVariantList(), platformData});
    default:
      return false;
  }
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
  if (action_name == kDownloadSelection) {
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
