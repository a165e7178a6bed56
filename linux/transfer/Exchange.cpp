// SPDX-License-Identifier: MIT

#include "linux/transfer/Exchange.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <ctime>
#include <new>

#include "common/BoundedText.h"
#include "linux/transfer/ContentCoding.h"
#include "linux/transfer/HeadTrace.h"

namespace quillforth::platform {

namespace {

// The port lies at the same offset in an IPv4 and an IPv6 address.
int LocalPort(curl_socket_t socket) {
  sockaddr_in6 address{};
  socklen_t length = sizeof address;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) return -1;
  return ntohs(address.sin6_port);
}

}  // namespace

void OpenSockets::watch(CURL* handle) {
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, &OpenSockets::open);
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, this);
  curl_easy_setopt(handle, CURLOPT_CLOSESOCKETFUNCTION, &OpenSockets::close);
  curl_easy_setopt(handle, CURLOPT_CLOSESOCKETDATA, this);
}

curl_socket_t OpenSockets::find(int port) const {
  const auto found = std::find_if(sockets_.begin(), sockets_.end(),
                                  [port](curl_socket_t socket) { return LocalPort(socket) == port; });
  return found == sockets_.end() ? CURL_SOCKET_BAD : *found;
}

bool OpenSockets::isOpen(curl_socket_t socket) const {
  return std::find(sockets_.begin(), sockets_.end(), socket) != sockets_.end();
}

bool OpenSockets::isReadable(curl_socket_t socket) const {
  pollfd entry{socket, POLLIN, 0};
  return ::poll(&entry, 1, 0) > 0;
}

std::optional<std::chrono::milliseconds> OpenSockets::ageOfLastByte(curl_socket_t socket) const {
  tcp_info info{};
  socklen_t length = sizeof info;
  if (!isOpen(socket) || ::getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &length) != 0)
    return std::nullopt;
  return std::chrono::milliseconds(info.tcpi_last_data_recv);
}

void OpenSockets::acknowledge(curl_socket_t socket) const {
  const int isOn = 1;
  if (isOpen(socket)) ::setsockopt(socket, IPPROTO_TCP, TCP_QUICKACK, &isOn, sizeof isOn);
}

void OpenSockets::shutDown() {
  for (const curl_socket_t socket : sockets_) ::shutdown(socket, SHUT_RDWR);
}

curl_socket_t OpenSockets::open(void* self, curlsocktype /*purpose*/, curl_sockaddr* address) {
  const curl_socket_t socket = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
  if (socket != CURL_SOCKET_BAD) static_cast<OpenSockets*>(self)->sockets_.push_back(socket);
  return socket;
}

int OpenSockets::close(void* self, curl_socket_t socket) {
  std::erase(static_cast<OpenSockets*>(self)->sockets_, socket);
  return ::close(socket);
}

namespace {

using SharedEnd = std::shared_ptr<bool>;

void FreeEnd(void* /*parent*/, void* end, CRYPTO_EX_DATA* /*data*/, int /*index*/, long /*argument*/,
             void* /*pointer*/) {
  delete static_cast<SharedEnd*>(end);
}

// The index under which a connection keeps its SharedEnd.
int EndIndex() {
  static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, &FreeEnd);
  return index;
}

void NoteAlert(const SSL* connection, int where, int alert) {
  const bool isReceived = (where & SSL_CB_READ_ALERT) == SSL_CB_READ_ALERT;
  if (!isReceived || (alert & 0xff) != SSL_AD_CLOSE_NOTIFY) return;
  if (const auto* end = static_cast<SharedEnd*>(SSL_get_ex_data(connection, EndIndex()))) **end = true;
}

CURLcode PrepareContext(CURL* /*handle*/, void* context, void* /*data*/) {
  SSL_CTX_set_info_callback(static_cast<SSL_CTX*>(context), &NoteAlert);
  return CURLE_OK;
}

SSL* ConnectionOf(CURL* handle) {
  curl_tlssessioninfo* session = nullptr;
  curl_easy_getinfo(handle, CURLINFO_TLS_SSL_PTR, &session);
  const bool isOpenSSL = session != nullptr && session->backend == CURLSSLBACKEND_OPENSSL;
  return isOpenSSL ? static_cast<SSL*>(session->internals) : nullptr;
}

}  // namespace

void WatchTLSEnd(CURL* handle) {
  curl_easy_setopt(handle, CURLOPT_SSL_CTX_FUNCTION, &PrepareContext);
}

TLSEnd TLSEndOf(CURL* handle) {
  SSL* connection = ConnectionOf(handle);
  if (connection == nullptr) return nullptr;
  if (const auto* known = static_cast<SharedEnd*>(SSL_get_ex_data(connection, EndIndex()))) return *known;
  auto end = std::make_unique<SharedEnd>(std::make_shared<bool>(false));
  if (SSL_set_ex_data(connection, EndIndex(), end.get()) != 1) return nullptr;
  return *end.release();  // the connection's from now on
}

bool HasUnreadTLS(CURL* handle) {
  const SSL* connection = ConnectionOf(handle);
  return connection != nullptr && SSL_has_pending(connection) == 1;
}

namespace {

// How much is received at a time: the most that libcurl allows. Large files are fast with few, large steps.
constexpr long kReceiveBytes = 512L * 1024;
constexpr int kProxyUnauthorized = 407;
// A body that nobody wants is read to its end up to this size, which keeps the connection usable.
constexpr std::size_t kMaxDiscardedBytes = 64UL * 1024;

template <typename Value>
Value InfoOf(CURL* handle, CURLINFO info, Value value) {
  curl_easy_getinfo(handle, info, &value);
  return value;
}

// Whether there is memory for the longest line that a head may have.
bool IsMemoryLeft() {
  return std::unique_ptr<char[]>(new (std::nothrow) char[ResponseHead::kMaxLength]) != nullptr;
}

// Whether the text of an answer to SIZE (RFC 3659, section 4) is a length. libcurl finds a number in any
// text, and then takes no more bytes than that.
bool SaysLength(std::string_view text) {
  std::int64_t length = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, length);
  const std::string_view rest(stop, static_cast<std::size_t>(end - stop));
  return error == std::errc() && length >= 0 && (rest == "\r\n" || rest == "\n");
}

}  // namespace

Exchange::Exchange(TransferContext& context, const TransferRequest& request, const std::string& url,
                   Attempt attempt, const std::vector<std::string>* lentCookies, Taker& taker)
    : context_(context),
      request_(request),
      taker_(taker),
      handle_(curl_easy_init()),
      hasCookies_(context.settings.keepsCookies && request.purpose != Purpose::probe),
      lentCookies_(lentCookies),
      attempt_(attempt) {
  if (handle_) setOptions(url);
}

void Exchange::setOptions(const std::string& url) {
  CURL* handle = handle_.get();
  curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https,ftp");
  curl_easy_setopt(handle, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
  curl_easy_setopt(handle, CURLOPT_USERAGENT, request_.userAgent.c_str());
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
  if (const std::string& file = context_.settings.caCertificateFile; !file.empty()) {
    curl_easy_setopt(handle, CURLOPT_CAINFO, file.c_str());
  }
  if (const std::string& folder = context_.settings.caCertificateFolder; !folder.empty()) {
    curl_easy_setopt(handle, CURLOPT_CAPATH, folder.c_str());
  }
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  // A name server that does not answer must not hold up the end of an aborted transfer.
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kReceiveBytes);
  curl_easy_setopt(handle, CURLOPT_FRESH_CONNECT, attempt_ == Attempt::first ? 0L : 1L);
  if (request_.method == "HEAD") {
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
    curl_easy_setopt(handle, CURLOPT_IGNORE_CONTENT_LENGTH, 1L);
  } else if (request_.method != "GET") {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request_.method.c_str());
  }
  if (attempt_ == Attempt::anewWithoutSize) curl_easy_setopt(handle, CURLOPT_IGNORE_CONTENT_LENGTH, 1L);
  curl_easy_setopt(handle, CURLOPT_NOPROGRESS, url.starts_with("ftp:") ? 0L : 1L);
  curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &Exchange::mayGoOn);
  curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
  curl_easy_setopt(handle, CURLOPT_HTTP_CONTENT_DECODING, 0L);
  if (request_.purpose == Purpose::page) curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, kAcceptedCodings);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &Exchange::receiveHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &Exchange::receiveBody);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle, CURLOPT_PREREQFUNCTION, &Exchange::willRequest);
  curl_easy_setopt(handle, CURLOPT_PREREQDATA, this);
  if (hasCookies_ && lentCookies_ == nullptr) context_.cookies.serve(handle);
  if (hasCookies_ && lentCookies_ != nullptr) CookieJar::lend(handle, *lentCookies_);
  if (request_.purpose != Purpose::probe) setUsersOptions();
  if (context_.settings.trace) TraceHeads(handle, context_.settings);
  context_.sockets.watch(handle);
  WatchTLSEnd(handle);
}

void Exchange::setUsersOptions() {
  const TransferSettings& settings = context_.settings;
  if (!settings.userAgent.empty()) {
    curl_easy_setopt(handle_.get(), CURLOPT_USERAGENT, settings.userAgent.c_str());
  }
  if (settings.maxBytesASecond > 0) {
    // At most an eighth of a second's bytes are received at a time.
    const auto piece = std::clamp<std::int64_t>(settings.maxBytesASecond / 8, 1024, kReceiveBytes);
    curl_easy_setopt(handle_.get(), CURLOPT_BUFFERSIZE, static_cast<long>(piece));
  }
  if (settings.keepsRemoteTime) curl_easy_setopt(handle_.get(), CURLOPT_FILETIME, 1L);
}

// A request has one field of cookies (RFC 6265, section 5.4). libcurl adds these to those of the jar.
void Exchange::carry(const std::vector<HeaderField>& fields) {
  std::string cookies;
  for (const HeaderField& field : fields) {
    if (common::EqualsNoCase(field.name, "Cookie")) {
      cookies.append(cookies.empty() ? "" : "; ").append(field.value);
      continue;
    }
    // A name alone would leave the field out.
    const std::string line = field.value.empty() ? field.name + ';' : field.name + ": " + field.value;
    curl_slist* longer = curl_slist_append(fields_.get(), line.c_str());
    if (longer == nullptr) throw std::bad_alloc();
    static_cast<void>(fields_.release());
    fields_.reset(longer);
  }
  curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, fields_.get());
  if (!cookies.empty()) curl_easy_setopt(handle_.get(), CURLOPT_COOKIE, cookies.c_str());
}

std::int64_t Exchange::modified() const {
  if (!context_.settings.keepsRemoteTime) return 0;
  const auto time = InfoOf(handle_.get(), CURLINFO_FILETIME_T, curl_off_t{0});
  return time > 0 && time <= std::time(nullptr) ? time : 0;
}

int Exchange::retryAfter() const {
  const auto seconds = InfoOf(handle_.get(), CURLINFO_RETRY_AFTER, curl_off_t{0});
  return static_cast<int>(std::clamp<curl_off_t>(seconds, 0, kMaxRetryAfter));
}

int Exchange::willRequest(void* self, char* /*remoteAddress*/, char* /*localAddress*/, int /*remotePort*/,
                          int localPort) {
  auto& exchange = *static_cast<Exchange*>(self);
  CURL* handle = exchange.handle_.get();
  const long count = InfoOf(handle, CURLINFO_NUM_CONNECTS, 0L);
  exchange.isOnUsedConnection_ = count == std::exchange(exchange.connectionCount_, count);
  exchange.tlsEnd_ = TLSEndOf(handle);
  exchange.socket_ = exchange.context_.sockets.find(localPort);
  exchange.requestTime_ = Clock::now();
  const bool hasSaidMore = exchange.context_.sockets.isReadable(exchange.socket_) || HasUnreadTLS(handle);
  if (!exchange.isOnUsedConnection_ || !hasSaidMore) return CURL_PREREQFUNC_OK;
  exchange.nextAttempt_ = Attempt::anew;
  return CURL_PREREQFUNC_ABORT;
}

std::size_t Exchange::receiveHeader(const char* data, std::size_t /*size*/, std::size_t count, void* self) {
  auto& exchange = *static_cast<Exchange*>(self);
  exchange.hasMoved_ = true;
  exchange.takeLine({data, count});
  return exchange.outcome_.isWhole() && !exchange.nextAttempt_ ? count : 0;
}

// Anything but 0 ends the exchange. The rest of the answer may still come then, so its connection is not used
// again.
int Exchange::mayGoOn(void* self, curl_off_t /*total*/, curl_off_t /*now*/, curl_off_t /*uploadTotal*/,
                      curl_off_t /*uploadNow*/) {
  const auto& exchange = *static_cast<Exchange*>(self);
  if (!exchange.context_.isGivingUp() && Clock::now() < exchange.context_.endOfTurn) return 0;
  curl_easy_setopt(exchange.handle(), CURLOPT_FORBID_REUSE, 1L);
  return 1;
}

void Exchange::noteCookie(std::string_view line) {
  if (lentCookies_ == nullptr) return context_.cookies.noteLine(line);
  if (common::StartsWithNoCase(line, "Set-Cookie:")) hasLostCookie_ = true;
}

void Exchange::takeLine(std::string_view line) {
  const bool wasComplete = head_.isComplete();
  if (isFTP()) {
    head_.passOver(line);
    if (line.starts_with("213 ") && !SaysLength(line.substr(4))) nextAttempt_ = Attempt::anewWithoutSize;
  } else {
    head_.addLine(line);
    if (hasCookies_) noteCookie(line);
  }
  outcome_.kind = head_.lineFault();
  if (head_.isComplete() && !wasComplete) judgeHead();
}

void Exchange::judgeHead() {
  if (!isTunnelsHead()) {
    outcome_.kind = head_.fault(request_.method != "HEAD");
  } else if (head_.status() == kProxyUnauthorized && request_.purpose != Purpose::probe) {
    isTunnelRefused_ = true;
  } else if (head_.status() >= 300) {
    outcome_ = {OutcomeKind::proxyStatus, head_.status()};
  } else {
    head_.expectAnother();
  }
}

// Whether the head is a proxy's answer to our request for a tunnel.
bool Exchange::isTunnelsHead() const {
  return InfoOf(handle_.get(), CURLINFO_HTTP_CONNECTCODE, 0L) != 0 &&
         InfoOf(handle_.get(), CURLINFO_RESPONSE_CODE, 0L) == 0;
}

std::size_t Exchange::receiveBody(const char* data, std::size_t /*size*/, std::size_t count, void* self) {
  auto& exchange = *static_cast<Exchange*>(self);
  exchange.hasMoved_ = true;
  return exchange.takeBody({data, count});
}

// libcurl's own limit lets much pass before it takes hold.
bool Exchange::isTooFast(std::size_t length) {
  const std::int64_t rate = context_.settings.maxBytesASecond;
  if (rate == 0 || request_.purpose == Purpose::probe) return false;
  const Clock::time_point now = Clock::now();
  isSlowedDown_ = isPaused_ = now < due_;
  if (!isSlowedDown_) {
    const std::chrono::duration<double> time(static_cast<double>(length) / static_cast<double>(rate));
    due_ = now + std::chrono::ceil<std::chrono::milliseconds>(time);
  }
  return isSlowedDown_;
}

std::size_t Exchange::takeBody(std::string_view bytes) {
  // libcurl ends a head at any line that begins with a carriage return.
  if (head_.isOpen()) {
    outcome_.kind = OutcomeKind::malformedAnswer;
    return CURL_WRITEFUNC_ERROR;
  }
  if (isTooFast(bytes.size())) return CURL_WRITEFUNC_PAUSE;
  if (!isWanted_) isWanted_ = taker_.wantsBody();
  if (!*isWanted_) {
    discardedLength_ += bytes.size();
    return discardedLength_ <= kMaxDiscardedBytes ? bytes.size() : CURL_WRITEFUNC_ERROR;
  }
  switch (taker_.takeBody(bytes)) {
    case Taking::taken:
      return bytes.size();
    case Taking::later:
      isPaused_ = true;
      return CURL_WRITEFUNC_PAUSE;
    case Taking::never:
      break;
  }
  return CURL_WRITEFUNC_ERROR;
}

void Exchange::resume() {
  if (!std::exchange(isPaused_, false)) return;
  isSlowedDown_ = false;
  hasMoved_ = true;
  curl_easy_pause(handle_.get(), CURLPAUSE_CONT);
}

bool Exchange::isFTP() const {
  const char* scheme = handle_ ? InfoOf<const char*>(handle_.get(), CURLINFO_SCHEME, nullptr) : nullptr;
  return scheme != nullptr && common::StartsWithNoCase(scheme, "ftp");
}

std::int64_t Exchange::announcedLength() const {
  if (!isFTP()) return head_.announcedLength().value_or(-1);
  return std::max<std::int64_t>(InfoOf(handle_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, curl_off_t{-1}),
                                -1);
}

std::string Exchange::peer() const {
  const char* address = InfoOf<const char*>(handle_.get(), CURLINFO_PRIMARY_IP, nullptr);
  const std::string text = address == nullptr ? "" : address;
  const bool isIPv6 = text.find(':') != std::string::npos;
  return (isIPv6 ? '[' + text + ']' : text) + ':' +
         std::to_string(InfoOf(handle_.get(), CURLINFO_PRIMARY_PORT, 0L));
}

bool Exchange::isTrickling(std::chrono::milliseconds limit) const {
  if (!requestTime_ || head_.isComplete()) return false;
  const std::optional<std::chrono::milliseconds> age = context_.sockets.ageOfLastByte(socket_);
  return age && Clock::now() - *age > *requestTime_ + limit / 2;
}

void Exchange::end(CURLcode result) {
  hasMoved_ = true;
  context_.sockets.acknowledge(socket_);
  context_.cookies.trim();
  // The last of these: what has come first is no status line, so it may belong to the answer before.
  const bool isBroken = result == CURLE_GOT_NOTHING || result == CURLE_RECV_ERROR ||
                        result == CURLE_SEND_ERROR || result == CURLE_OK ||
                        result == CURLE_UNSUPPORTED_PROTOCOL;
  const bool isAnswered = isFTP() || !outcome_.isWhole() || head_.isComplete();
  if (isOnUsedConnection_ && attempt_ == Attempt::first && isBroken && !isAnswered)
    nextAttempt_ = Attempt::anew;
  if (!outcome_.isWhole()) return;
  const bool hasHead = isFTP() ? result == CURLE_OK : head_.isComplete();
  if (hasHead && !isWanted_) isWanted_ = taker_.wantsBody();
  if (isWanted_.value_or(true)) outcome_ = outcomeOf(result);
}

// libcurl accepts a head that is cut off as a whole one. It also accepts a body without a length when the TLS
// connection was cut off.
TransferOutcome Exchange::outcomeOf(CURLcode result) const {
  if (isTunnelRefused_) return {};
  // When memory is left, libcurl ran out of room because a line has no end.
  const bool isInHead = requestTime_ && !head_.isComplete();
  if (result == CURLE_OUT_OF_MEMORY && isInHead && IsMemoryLeft()) return {OutcomeKind::headTooLong};
  if (result != CURLE_OK) return OutcomeOf(result);
  if (isFTP()) return {};
  if (!head_.isComplete()) return {OutcomeKind::incomplete};
  const bool isCut = tlsEnd_ && !*tlsEnd_ && request_.method != "HEAD" && head_.endsWithConnection();
  return isCut ? TransferOutcome{OutcomeKind::brokenOff} : TransferOutcome();
}

}  // namespace quillforth::platform
