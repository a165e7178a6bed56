// SPDX-License-Identifier: MIT

#include "linux/transfer/Transfer.h"

#include <algorithm>
#include <utility>

namespace quillforth::platform {

namespace {

// So often a URL is asked for once more, when a connection was not fit for it.
constexpr int kMaxFurtherAttempts = 4;
constexpr int kUnauthorized = 401;
constexpr int kProxyUnauthorized = 407;
constexpr int kTooManyRequests = 429;
constexpr int kUnavailable = 503;

bool IsWantedStatus(Purpose purpose, int status) {
  switch (purpose) {
    case Purpose::probe:
      return true;
    case Purpose::page:
      return status >= 200 && status < 400;
    case Purpose::file:
      return status >= 200 && status < 300 && status != 206;
  }
  return false;
}

// The origin on the same host and on the default port of https; empty unless `origin` is of http.
std::string SecureOrigin(const std::string& origin) {
  constexpr std::string_view kScheme = "http:";
  if (!origin.starts_with(kScheme)) return {};
  return "https:" + origin.substr(kScheme.size(), origin.rfind(':') - kScheme.size()) + ":443";
}

}  // namespace

void Transfer::start(TransferContext& context) {
  context_ = &context;
  redirectsLeft_ = kMaxRedirects;
  hasBegun_ = false;
  takenLength_ = 0;
  loginGeneration_ = context.credentials.generation();
  std::optional<RequestURL> url = RequestURL::parse(request_.url);
  if (!url) return fail({OutcomeKind::malformedURL});
  if (request_.login) url->login = request_.login;
  logins_.emplace(context.credentials, request_.purpose != Purpose::probe);
  const bool hasFixedReferrer = request_.purpose != Purpose::probe && !context.settings.referrer.empty();
  referrer_ = hasFixedReferrer ? context.settings.referrer : request_.referrer;
  firstOrigin_ = url->origin;
  goTo(*std::move(url));
}

void Transfer::goTo(RequestURL url) {
  url_ = std::move(url);
  attemptsLeft_ = kMaxFurtherAttempts;
  if (!referrer_.empty()) referrer_ = url_.reducedReferrer(referrer_, context_->settings.tellsWholeReferrer);
  logins_->goTo(url_);
  beginExchange();
}

// The user's fields that the server of `url` may see.
std::vector<HeaderField> Transfer::fieldsFor(const RequestURL& url) const {
  const TransferSettings& settings = context_->settings;
  const bool isAllowed = url.origin == firstOrigin_ || url.origin == SecureOrigin(firstOrigin_);
  if (request_.purpose == Purpose::probe || !isAllowed) return {};
  std::vector<HeaderField> fields = settings.headers;
  if (!settings.trustedOrigins.contains(url.origin)) {
    std::erase_if(fields, [](const HeaderField& field) { return field.tellsWhoAsks(); });
  }
  return fields;
}

void Transfer::beginExchange(Exchange::Attempt attempt) {
  if (isAhead_) lent_.push_back({url_.host, context_->cookies.cookiesNear(url_.host)});
  exchange_ = std::make_unique<Exchange>(*context_, request_, url_.text, attempt,
                                         isAhead_ ? &lent_.back().cookies : nullptr,
                                         static_cast<Exchange::Taker&>(*this));
  if (exchange_->handle() == nullptr) return fail({OutcomeKind::outOfMemory});
  curl_easy_setopt(exchange_->handle(), CURLOPT_PRIVATE, this);
  if (!referrer_.empty()) curl_easy_setopt(exchange_->handle(), CURLOPT_REFERER, referrer_.c_str());
  if (const auto fields = fieldsFor(url_); !fields.empty()) exchange_->carry(fields);
  logins_->apply(exchange_->handle(), url_.origin);
  fault_ = {};
  phase_ = Phase::requesting;
}

bool Transfer::wantsBody() {
  const bool isWithoutBody =
      !exchange_->head().location().empty() || isRefused() || exchange_->hasLostCookie();
  if (isWithoutBody) return false;
  fault_ = judgeAnswer();
  return fault_.isWhole();
}

bool Transfer::isRefused() const {
  const int status = exchange_->head().status();
  return request_.purpose != Purpose::probe && (status == kUnauthorized || status == kProxyUnauthorized);
}

// Whether an answer ahead of its turn is of no use: the server wants a login, is too busy, or sets a cookie,
// which must not come before the cookies of earlier answers.
bool Transfer::isOnlyForItsTurn() const {
  if (exchange_->hasLostCookie()) return true;
  const int status = exchange_->head().status();
  return isAhead_ && (isRefused() || status == kTooManyRequests || status == kUnavailable);
}

// FTP has no status, and every complete answer is good.
TransferOutcome Transfer::judgeAnswer() const {
  const ResponseHead& head = exchange_->head();
  if (exchange_->isFTP()) {
    const bool isFolder = request_.purpose == Purpose::file && IsFTPFolder(url_.text);
    return {isFolder ? OutcomeKind::folder : OutcomeKind::whole};
  }
  if (!IsWantedStatus(request_.purpose, head.status()))
    return {OutcomeKind::status, head.status(), exchange_->retryAfter(),
            HostOf(QString::fromStdString(url_.text))};
  const std::int64_t length = exchange_->announcedLength();
  const bool isTooLong = length > 0 && static_cast<std::uint64_t>(length) > request_.maxBodyLength;
  return {isTooLong ? OutcomeKind::tooLong : OutcomeKind::whole};
}

void Transfer::beginBody() {
  if (std::exchange(hasBegun_, true)) return;
  logins_->accepted(url_.path);
  begin();
}

Exchange::Taking Transfer::takeBody(std::string_view bytes) {
  beginBody();
  if (bytes.size() > request_.maxBodyLength - takenLength_) {
    fault_ = {OutcomeKind::tooLong};
    return Exchange::Taking::never;
  }
  const Exchange::Taking taking = take(bytes);
  if (taking == Exchange::Taking::taken) takenLength_ += bytes.size();
  if (taking == Exchange::Taking::never) fault_ = bodyFault();
  return taking;
}

void Transfer::requestDone(CURLcode result) {
  exchange_->end(result);
  if (const auto attempt = exchange_->nextAttempt()) {
    if (attemptsLeft_-- > 0) return beginExchange(*attempt);
    return fail({OutcomeKind::malformedAnswer});
  }
  if (isOnlyForItsTurn()) {
    context_->hostsInTurnOnly.insert(url_.host);
    return isAhead_ ? drop() : startAgain();
  }
  if (!fault_.isWhole()) return fail(fault_);
  if (!exchange_->outcome().isWhole()) return fail(exchange_->outcome());
  if (exchange_->isWanted()) {
    beginBody();
    return finish();
  }
  if (isRefused()) return handleRefusal();
  followRedirect();
}

void Transfer::followRedirect() {
  if (redirectsLeft_-- == 0) return fail({OutcomeKind::tooManyRedirects});
  const std::string location(exchange_->head().location());
  const std::optional<RequestURL> next = url_.redirectedTo(location);
  if (!next) return fail({OutcomeKind::forbiddenRedirect});
  logins_->accepted(url_.path);
  goTo(*next);
}

void Transfer::handleRefusal() {
  const int status = exchange_->head().status();
  const bool isProxy = status == kProxyUnauthorized;
  DownloadLogins::Refusal refusal{isProxy, url_.origin, url_.host + ':' + url_.port, {}};
  if (isProxy) {
    const std::string proxy = ProxyFromEnvironment(url_.origin.substr(0, url_.origin.find(':')));
    if (proxy.empty()) return fail({OutcomeKind::status, status});
    refusal.hadOtherLogin = proxy.find('@') != std::string::npos;
    refusal.host = exchange_->peer();
    refusal.origin = "proxy " + refusal.host;
  }
  refusal.fields =
      exchange_->head().header().valuesOfField(isProxy ? "Proxy-Authenticate" : "WWW-Authenticate");
  switch (logins_->refused(refusal)) {
    case DownloadLogins::Next::retry:
      return beginExchange();
    case DownloadLogins::Next::ask:
      phase_ = Phase::waiting;
      if (ask(logins_->challenge())) return;
      return fail(OutcomeWithoutLogin(logins_->challenge()));
    case DownloadLogins::Next::giveUp:
      return fail({isProxy ? OutcomeKind::proxyLoginRefused : OutcomeKind::loginRefused});
    case DownloadLogins::Next::cannot:
      return fail({isProxy ? OutcomeKind::proxyStatus : OutcomeKind::status, status});
  }
}

bool Transfer::mayGoAhead() const {
  return !logins_->isRemembered() && !url_.text.starts_with("ftp:") &&
         !context_->hostsInTurnOnly.contains(url_.host);
}

void Transfer::drop() {
  isDropped_ = true;
  phase_ = Phase::waiting;
  discard();
}

void Transfer::adopt() {
  isAhead_ = false;
  const bool hasOtherCookies = std::any_of(lent_.begin(), lent_.end(), [this](const Lent& lent) {
    return context_->cookies.cookiesNear(lent.host) != lent.cookies;
  });
  if (isDropped_ || hasOtherCookies || loginGeneration_ != context_->credentials.generation()) startAgain();
}

void Transfer::startAgain() {
  phase_ = Phase::again;
  discard();
}

void Transfer::answer(const std::string& user, const std::string& password) {
  if (phase_ != Phase::waiting || !logins_->answer(user, password)) return;
  beginExchange();
}

void Transfer::resume() {
  if (phase_ == Phase::requesting && exchange_) exchange_->resume();
}

Transfer::Clock::time_point Transfer::lookAtClock(Clock::time_point now) {
  if (phase_ != Phase::requesting) return Clock::time_point::max();
  if (const auto due = exchange_->slowedDownUntil()) {
    if (now < *due) return *due;
    exchange_->resume();
  }
  if (exchange_->takeMove()) lastMove_ = now;
  if (exchange_->isPaused()) return Clock::time_point::max();
  const Clock::time_point stallTime = lastMove_ + request_.stallTimeout;
  if (now < stallTime) return stallTime;
  fail({exchange_->isTrickling(request_.stallTimeout) ? OutcomeKind::slowHead : OutcomeKind::silence});
  return now;
}

void Transfer::fail(const TransferOutcome& outcome) {
  if (isAhead_) return drop();
  phase_ = Phase::ended;
  giveUp(outcome);
}

}  // namespace quillforth::platform
