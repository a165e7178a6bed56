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
#include <new>

#include "common/BoundedText.h"
#include "linux/transfer/ContentCoding.h"

namespace quillforth::platform {

namespace {

// Of IPv4 or IPv6, in which it stands at the same place.
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

bool OpenSockets::isReadable(int port) const {
  pollfd entry{find(port), POLLIN, 0};
  return ::poll(&entry, 1, 0) > 0;
}

std::optional<std::chrono::milliseconds> OpenSockets::ageOfLastByte(int port) const {
  tcp_info info{};
  socklen_t length = sizeof info;
  if (::getsockopt(find(port), IPPROTO_TCP, TCP_INFO, &info, &length) != 0) return std::nullopt;
  return std::chrono::milliseconds(info.tcpi_last_data_recv);
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

// Where a connection keeps its SharedEnd.
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

// Received at a time; libcurl's greatest. Fewer, larger steps are what makes large files fast.
constexpr long kReceiveBytes = 512L * 1024;
// A body that nobody wants is read to its end up to this size, which keeps the connection usable.
constexpr std::size_t kMaxDiscardedBytes = 64UL * 1024;

template <typename Value>
Value InfoOf(CURL* handle, CURLINFO info, Value value) {
  curl_easy_getinfo(handle, info, &value);
  return value;
}

// For as much as a line of a head may need.
bool IsMemoryLeft() {
  return std::unique_ptr<char[]>(new (std::nothrow) char[ResponseHead::kMaxLength]) != nullptr;
}

// Of an answer to SIZE (RFC 3659, section 4): libcurl finds a number in any.
bool SaysLength(std::string_view text) {
  std::int64_t length = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, length);
  const std::string_view rest(stop, static_cast<std::size_t>(end - stop));
  return error == std::errc() && length >= 0 && (rest == "\r\n" || rest == "\n");
}

}  // namespace

Exchange::Exchange(TransferContext& context, const TransferRequest& request, const std::string& url,
                   bool isFresh, const std::vector<std::string>* lentCookies, Taker& taker)
    : context_(context),
      request_(request),
      taker_(taker),
      handle_(curl_easy_init()),
      hasCookies_(context.settings.keepsCookies && request.purpose != Purpose::probe),
      lentCookies_(lentCookies),
      isFresh_(isFresh) {
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
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  // A name server that does not answer must not hold up the end of an aborted transfer.
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kReceiveBytes);
  curl_easy_setopt(handle, CURLOPT_FRESH_CONNECT, isFresh_ ? 1L : 0L);
  if (request_.method == "HEAD") {
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
    curl_easy_setopt(handle, CURLOPT_IGNORE_CONTENT_LENGTH, 1L);
  } else if (request_.method != "GET") {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, request_.method.c_str());
  }
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
  context_.sockets.watch(handle);
  WatchTLSEnd(handle);
}

int Exchange::willRequest(void* self, char* /*remoteAddress*/, char* /*localAddress*/, int /*remotePort*/,
                          int localPort) {
  auto& exchange = *static_cast<Exchange*>(self);
  CURL* handle = exchange.handle_.get();
  const long count = InfoOf(handle, CURLINFO_NUM_CONNECTS, 0L);
  exchange.isOnUsedConnection_ = count == std::exchange(exchange.connectionCount_, count);
  exchange.tlsEnd_ = TLSEndOf(handle);
  exchange.localPort_ = localPort;
  exchange.requestTime_ = Clock::now();
  const bool hasSaidMore = exchange.context_.sockets.isReadable(localPort) || HasUnreadTLS(handle);
  exchange.mustBeRepeated_ = exchange.isOnUsedConnection_ && !exchange.isFresh_ && hasSaidMore;
  return exchange.mustBeRepeated_ ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

std::size_t Exchange::receiveHeader(const char* data, std::size_t /*size*/, std::size_t count, void* self) {
  auto& exchange = *static_cast<Exchange*>(self);
  exchange.hasMoved_ = true;
  exchange.takeLine({data, count});
  return exchange.outcome_.isWhole() ? count : 0;
}

void Exchange::noteCookie(std::string_view line) {
  if (lentCookies_ == nullptr) return context_.cookies.noteLine(line);
  if (common::StartsWithNoCase(line, "Set-Cookie:")) hasLostCookie_ = true;
}

void Exchange::takeLine(std::string_view line) {
  const bool wasComplete = head_.isComplete();
  if (isFTP()) {
    head_.passOver(line);
    if (line.starts_with("213 ")) hasFTPLength_ = SaysLength(line.substr(4));
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
  } else if (head_.status() >= 300) {
    isTunnelRefused_ = true;
  } else {
    head_.expectAnother();
  }
}

// The head is a proxy's answer to our wish to be connected through.
bool Exchange::isTunnelsHead() const {
  return InfoOf(handle_.get(), CURLINFO_HTTP_CONNECTCODE, 0L) != 0 &&
         InfoOf(handle_.get(), CURLINFO_RESPONSE_CODE, 0L) == 0;
}

std::size_t Exchange::receiveBody(const char* data, std::size_t /*size*/, std::size_t count, void* self) {
  auto& exchange = *static_cast<Exchange*>(self);
  exchange.hasMoved_ = true;
  return exchange.takeBody({data, count});
}

std::size_t Exchange::takeBody(std::string_view bytes) {
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
  hasMoved_ = true;
  curl_easy_pause(handle_.get(), CURLPAUSE_CONT);
}

bool Exchange::isFTP() const {
  const char* scheme = handle_ ? InfoOf<const char*>(handle_.get(), CURLINFO_SCHEME, nullptr) : nullptr;
  return scheme != nullptr && common::StartsWithNoCase(scheme, "ftp");
}

std::int64_t Exchange::announcedLength() const {
  if (!isFTP()) return head_.announcedLength().value_or(-1);
  if (!hasFTPLength_) return -1;
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
  const std::optional<std::chrono::milliseconds> age = context_.sockets.ageOfLastByte(localPort_);
  return age && Clock::now() - *age > *requestTime_ + limit / 2;
}

void Exchange::end(CURLcode result) {
  hasMoved_ = true;
  context_.cookies.trim();
  const bool isBroken = result == CURLE_GOT_NOTHING || result == CURLE_RECV_ERROR ||
                        result == CURLE_SEND_ERROR || result == CURLE_OK;
  mustBeRepeated_ = mustBeRepeated_ || (isOnUsedConnection_ && !isFresh_ && isBroken && !isFTP() &&
                                        outcome_.isWhole() && !head_.isComplete());
  if (!outcome_.isWhole()) return;
  const bool hasHead = isFTP() ? result == CURLE_OK : head_.isComplete();
  if (hasHead && !isWanted_) isWanted_ = taker_.wantsBody();
  if (isWanted_.value_or(true)) outcome_ = outcomeOf(result);
}

// libcurl takes a head that is cut off for a whole one, and so a body without a length whose end TLS has not
// said.
TransferOutcome Exchange::outcomeOf(CURLcode result) const {
  if (isTunnelRefused_) return {};
  // What libcurl has no room for, where there is memory, is a line without end.
  const bool isInHead = requestTime_ && !head_.isComplete();
  if (result == CURLE_OUT_OF_MEMORY && isInHead && IsMemoryLeft()) return {OutcomeKind::headTooLong};
  if (result != CURLE_OK) return OutcomeOf(result);
  if (isFTP()) return {};
  if (!head_.isComplete()) return {OutcomeKind::incomplete};
  const bool isCut = tlsEnd_ && !*tlsEnd_ && request_.method != "HEAD" && head_.endsWithConnection();
  return isCut ? TransferOutcome{OutcomeKind::brokenOff} : TransferOutcome();
}

}  // namespace quillforth::platform
