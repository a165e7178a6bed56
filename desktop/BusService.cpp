// SPDX-License-Identifier: MIT

#include "desktop/BusService.h"

#include <poll.h>

#include <QCoreApplication>
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

#include "desktop/Appearance.h"
#include "net/URL.h"

namespace quillforth::desktop {

BusLoop::BusLoop(sd_bus& bus, std::function<void()> lost)
    : bus_(bus),
      lost_(std::move(lost)),
      readable_(sd_bus_get_fd(&bus), QSocketNotifier::Read),
      writable_(sd_bus_get_fd(&bus), QSocketNotifier::Write) {
  next_.setSingleShot(true);
  next_.callOnTimeout([this] { processOne(); });
  for (QSocketNotifier* notifier : {&readable_, &writable_}) {
    QObject::connect(notifier, &QSocketNotifier::activated, &next_, [this] { processOne(); });
  }
  next_.start();
}

void BusLoop::processOne() {
  if (isDrained_) busySince_ = std::chrono::steady_clock::now();
  const int done = sd_bus_process(&bus_, nullptr);
  isDrained_ = done == 0;
  const int events = done < 0 ? 0 : sd_bus_get_events(&bus_);
  const bool mustWrite = events > 0 && (events & POLLOUT) != 0;
  writable_.setEnabled(mustWrite);
  readable_.setEnabled(events > 0 && !mustWrite);
  if (done > 0 && !mustWrite) next_.start();
  if (done < 0) lost_();
}

namespace {

constexpr const char* kPath = "/com/tessarysoftware/Quillforth";
constexpr const char* kApplication = "org.freedesktop.Application";
constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kTokenKey = "activation-token";
constexpr const char* kIdentityKey = "x-quillforth-identity";
constexpr const char* kDeadlineKey = "x-quillforth-deadline";
constexpr const char* kDownloadSelection = "download-selection";
constexpr std::uint64_t kMicrosecondsToAnswer = 5'000'000;
constexpr int kMaxPlatformData = 100;
constexpr std::chrono::seconds kFirstPause(1);  // before the bus is looked for again
constexpr std::chrono::milliseconds kLongestPause = std::chrono::minutes(1);

/// What KRunner shows is typed by hand.
constexpr qsizetype kMaxMatchLength = 2048;

// Of a text that is too long only as much as shows that it is.
QString TextOf(const char* text) {
  constexpr std::size_t kMaxBytes = 3 * (Request::kMaxTextLength + 1);  // one UTF-16 unit takes three at most
  return QString::fromUtf8(text, static_cast<qsizetype>(::strnlen(text, kMaxBytes)));
}

// The types of all arguments have been checked when a method is called.
QString TakeText(sd_bus_message* call) {
  const char* text = "";
  static_cast<void>(sd_bus_message_read(call, "s", &text));
  return TextOf(text);
}

// Of too much text only as much as shows that it is.
QStringList TakeTexts(sd_bus_message* call) {
  QStringList texts;
  const char* text = nullptr;
  if (sd_bus_message_enter_container(call, 'a', "s") < 0) return texts;
  for (qsizetype size = 0; size <= Request::kMaxSize && sd_bus_message_read(call, "s", &text) > 0;) {
    texts.append(TextOf(text));
    size += Request::kTextSize + texts.constLast().size();
  }
  sd_bus_message_exit_container(call);
  return texts;
}

// The rest of `request`.
void TakePlatformData(sd_bus_message* call, Request& request) {
  QVariantMap data;
  const char* key = nullptr;
  if (sd_bus_message_enter_container(call, 'a', "{sv}") < 0) return;
  for (int count = 0; count < kMaxPlatformData; ++count) {
    if (sd_bus_message_enter_container(call, 'e', "sv") <= 0) break;
    const char* text = nullptr;
    std::int64_t number = 0;
    if (sd_bus_message_read(call, "s", &key) <= 0) break;
    if (sd_bus_message_verify_type(call, 'v', "s") > 0) {
      if (sd_bus_message_read(call, "v", "s", &text) > 0) data.insert(TextOf(key), TextOf(text));
    } else if (sd_bus_message_verify_type(call, 'v', "x") > 0) {
      if (sd_bus_message_read(call, "v", "x", &number) > 0) data.insert(TextOf(key), qint64{number});
    } else if (sd_bus_message_skip(call, "v") < 0) {
      break;
    }
    sd_bus_message_exit_container(call);
  }
  request.activationToken = ActivationTokenIn(data);
  request.handOver = {data.value(QLatin1StringView(kIdentityKey)).toString(),
                      data.value(QLatin1StringView(kDeadlineKey)).toLongLong()};
}

int Take(void* handler, const Request& request, sd_bus_message* call, sd_bus_error* error) {
  if (const QString fault = Fault(request); !fault.isNull()) {
    return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, fault.toUtf8().constData());
  }
  switch (static_cast<RequestHandler*>(handler)->take(request)) {
    case RequestHandler::Answer::taken:
      return sd_bus_reply_method_return(call, "");
    case RequestHandler::Answer::tooBusy:
      return sd_bus_error_set(error, SD_BUS_ERROR_LIMITS_EXCEEDED, "too much waits already");
    case RequestHandler::Answer::isLate:
      return sd_bus_error_set(error, SD_BUS_ERROR_TIMEOUT, "the deadline of the request is over");
    case RequestHandler::Answer::isQuitting:
      break;
  }
  return sd_bus_error_set(error, SD_BUS_ERROR_DISCONNECTED, "the program ends");
}

int Activate(sd_bus_message* call, void* handler, sd_bus_error* error) {
  Request request{Request::Kind::activate};
  TakePlatformData(call, request);
  return Take(handler, request, call, error);
}

int Open(sd_bus_message* call, void* handler, sd_bus_error* error) {
  Request request{Request::Kind::open, TakeTexts(call)};
  if (Fault(request).isNull()) TakePlatformData(call, request);
  return Take(handler, request, call, error);
}

int ActivateAction(sd_bus_message* call, void* handler, sd_bus_error* error) {
  if (TakeText(call) != QLatin1StringView(kDownloadSelection)) {
    return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "there is no such action");
  }
  static_cast<void>(sd_bus_message_skip(call, "av"));
  Request request{Request::Kind::downloadSelection};
  TakePlatformData(call, request);
  return Take(handler, request, call, error);
}

int GetURL(sd_bus_message* call, void* handler, sd_bus_error* error) {
  return Take(handler, {Request::Kind::getURL, {TakeText(call)}}, call, error);
}

int DownloadText(sd_bus_message* call, void* handler, sd_bus_error* error) {
  return Take(handler, {Request::Kind::downloadText, {TakeText(call)}}, call, error);
}

// The address without blanks, when the program can download from there; null otherwise.
QString DownloadableURL(const QString& text) {
  if (text.size() > kMaxMatchLength) return {};
  const std::optional<platform::URL> url = platform::URL::URLWithString(text.trimmed());
  return url && platform::CanBeFetched(*url) ? url->absoluteString() : QString();
}

// Of a match: identifier, text, icon, category, relevance from 0 to 1, properties.
int Match(sd_bus_message* call, void* /*handler*/, sd_bus_error* /*error*/) {
  constexpr std::uint32_t kExactMatch = 100;
  const QString url = DownloadableURL(TakeText(call));
  if (url.isNull()) return sd_bus_reply_method_return(call, "a(sssuda{sv})", 0);
  const QString text =
      QCoreApplication::translate("quillforth::desktop::BusService", "Download %1 with Quillforth")
          .arg(platform::WithoutCredentials(url));
  return sd_bus_reply_method_return(call, "a(sssuda{sv})", 1, url.toUtf8().constData(),
                                    text.toUtf8().constData(), kApplicationID, kExactMatch, 1.0, 0);
}

// There is nothing else that can be done with a match.
int Actions(sd_bus_message* call, void* /*handler*/, sd_bus_error* /*error*/) {
  return sd_bus_reply_method_return(call, "a(sss)", 0);
}

int Run(sd_bus_message* call, void* handler, sd_bus_error* error) {
  const QString url = DownloadableURL(TakeText(call));
  const QStringList texts = url.isNull() ? QStringList() : QStringList(url);
  return Take(handler, {Request::Kind::downloadText, texts}, call, error);
}

constexpr sd_bus_vtable Method(const char* name, const char* arguments, const char* results,
                               sd_bus_message_handler_t call) {
  return SD_BUS_METHOD(name, arguments, results, call, SD_BUS_VTABLE_UNPRIVILEGED);
}

const sd_bus_vtable kApplicationMethods[] = {
    SD_BUS_VTABLE_START(0), Method("Activate", "a{sv}", "", &Activate), Method("Open", "asa{sv}", "", &Open),
    Method("ActivateAction", "sava{sv}", "", &ActivateAction), SD_BUS_VTABLE_END};
const sd_bus_vtable kDownloadMethods[] = {SD_BUS_VTABLE_START(0), Method("GetURL", "s", "", &GetURL),
                                          Method("DownloadText", "s", "", &DownloadText), SD_BUS_VTABLE_END};
const sd_bus_vtable kRunnerMethods[] = {SD_BUS_VTABLE_START(0), Method("Match", "s", "a(sssuda{sv})", &Match),
                                        Method("Actions", "", "a(sss)", &Actions),
                                        Method("Run", "ss", "", &Run), SD_BUS_VTABLE_END};

int NameLost(sd_bus_message* signal, void* lost, sd_bus_error* /*error*/) {
  const char* name = "";
  static_cast<void>(sd_bus_message_read(signal, "s", &name));
  const auto& call = *static_cast<std::function<void()>*>(lost);
  if (std::strcmp(name, kApplicationID) == 0 && call) call();
  return 0;
}

using BusMessage = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

const char* MethodFor(Request::Kind kind) {
  if (kind == Request::Kind::open) return "Open";
  return kind == Request::Kind::downloadSelection ? "ActivateAction" : "Activate";
}

bool AppendTexts(sd_bus_message* call, const QStringList& texts) {
  return sd_bus_message_open_container(call, 'a', "s") >= 0 &&
         std::all_of(texts.begin(), texts.end(),
                     [call](const QString& text) {
                       return sd_bus_message_append(call, "s", text.toUtf8().constData()) >= 0;
                     }) &&
         sd_bus_message_close_container(call) >= 0;
}

// Null when the request cannot be on a bus.
BusMessage CallFor(sd_bus& bus, const Request& request) {
  sd_bus_message* made = nullptr;
  sd_bus_message_new_method_call(&bus, &made, kApplicationID, kPath, kApplication, MethodFor(request.kind));
  BusMessage call(made, &sd_bus_message_unref);
  bool isWhole = made != nullptr && sd_bus_message_set_auto_start(made, 0) >= 0;
  if (request.kind == Request::Kind::open) isWhole = isWhole && AppendTexts(made, request.texts);
  if (request.kind == Request::Kind::downloadSelection) {
    isWhole = isWhole && sd_bus_message_append(made, "sav", kDownloadSelection, 0) >= 0;
  }
  const QByteArray token = request.activationToken.toUtf8();
  const QByteArray identity = request.handOver.identity.toUtf8();
  isWhole = isWhole &&
            sd_bus_message_append(made, "a{sv}", 3, kTokenKey, "s", token.constData(), kIdentityKey, "s",
                                  identity.constData(), kDeadlineKey, "x", request.handOver.deadline) >= 0;
  return isWhole ? std::move(call) : BusMessage(nullptr, &sd_bus_message_unref);
}

}  // namespace

BusService::BusService(RequestHandler& handler, std::function<void()> lost)
    : handler_(handler), lost_(std::move(lost)), pause_(kFirstPause) {
  retry_.setSingleShot(true);
  retry_.callOnTimeout([this] { comeBack(); });
}

// Flushing waits for a bus that has not let this process in.
void BusService::CloseBus::operator()(sd_bus* bus) const {
  if (sd_bus_is_ready(bus) > 0) sd_bus_flush(bus);
  sd_bus_close_unref(bus);
}

bool BusService::open() {
  loop_.reset();
  bus_.reset();
  sd_bus* bus = nullptr;
  if (sd_bus_open_user(&bus) < 0) return false;
  bus_.reset(bus);
  const bool isShown =
      sd_bus_set_method_call_timeout(bus, kMicrosecondsToAnswer) >= 0 &&
      sd_bus_add_object_vtable(bus, nullptr, kPath, kApplication, kApplicationMethods, &handler_) >= 0 &&
      sd_bus_add_object_vtable(bus, nullptr, kPath, kApplicationID, kDownloadMethods, &handler_) >= 0 &&
      sd_bus_add_object_vtable(bus, nullptr, "/KRunner", "org.kde.krunner1", kRunnerMethods, &handler_) >= 0;
  if (!isShown) bus_.reset();
  return isShown;
}

BusService::Outcome BusService::begin() {
  const bool isStandIn = lost_ != nullptr;
  int result = bus_ || open() ? 0 : -ENOTCONN;
  if (result >= 0 && isStandIn) {
    result = sd_bus_match_signal(bus_.get(), nullptr, kBus, nullptr, kBus, "NameLost", &NameLost, &lost_);
  }
  if (result >= 0) {
    result = sd_bus_request_name(bus_.get(), kApplicationID,
                                 isStandIn ? SD_BUS_NAME_ALLOW_REPLACEMENT : SD_BUS_NAME_REPLACE_EXISTING);
  }
  if (result == -EEXIST) return Outcome::isNameTaken;
  if (result < 0) {
    comeBackLater();
    return Outcome::noBus;
  }
  serve();
  return Outcome::isNamed;
}

void BusService::serve() {
  loop_.emplace(*bus_, [this] { lost_ ? lost_() : comeBackLater(); });
}

void BusService::stay() {
  lost_ = nullptr;
  static_cast<void>(sd_bus_request_name_async(bus_.get(), nullptr, kApplicationID, 0, nullptr, nullptr));
}

void BusService::comeBackLater() {
  retry_.start(pause_);
  pause_ = std::min(2 * pause_, kLongestPause);
}

// Nobody is waited for: the name is asked for as soon as the bus has let this process in, and comes when it
// is free.
void BusService::comeBack() {
  const auto answered = [](sd_bus_message* /*reply*/, void* service, sd_bus_error* /*error*/) {
    static_cast<BusService*>(service)->pause_ = kFirstPause;
    return 0;
  };
  constexpr std::uint64_t kFlags = SD_BUS_NAME_REPLACE_EXISTING | SD_BUS_NAME_QUEUE;
  if (!open() || sd_bus_request_name_async(bus_.get(), nullptr, kApplicationID, kFlags, answered, this) < 0) {
    return comeBackLater();
  }
  serve();
}

bool BusService::handOver(const Request& request, std::chrono::microseconds patience) {
  const BusMessage call = CallFor(*bus_, request);
  const auto left = static_cast<std::uint64_t>(std::max<std::int64_t>(patience.count(), 1));
  return call && sd_bus_call(bus_.get(), call.get(), left, nullptr, nullptr) >= 0;
}

}  // namespace quillforth::desktop
