// SPDX-License-Identifier: MIT
//
// Up to eight answers of a server, cut into pieces, to files, pages and probes over one engine: no crash, no
// file left behind, and nothing taken for whole that a strict reader of RFC 9112 does not read just so.
//
// An answer begins with two bytes, who asks and how it is sent, and ends with 0x1E. Redirects and logins take
// further answers. The server has no more to say after the last.

#include <dlfcn.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>

#include <QCoreApplication>
#include <algorithm>
#include <atomic>
#include <random>

#include "classify/PageOrFile.h"
#include "common/BoundedText.h"
#include "fuzz/Fuzz.h"
#include "linux/transfer/CurlPageLoader.h"
#include "linux/transfer/CurlReadStream.h"
#include "tests/linux/transfer/DownloadFixture.h"
#include "tests/linux/transfer/StrictReader.h"

namespace {

std::atomic<in_port_t> ownPort = 0;

}  // namespace

// libcurl finds these two before the C library's. So no redirect leads anywhere but to the server here.
extern "C" __attribute__((visibility("default"))) int connect(int socket, const sockaddr* address,
                                                              socklen_t length) {
  static const auto real = reinterpret_cast<decltype(&connect)>(dlsym(RTLD_NEXT, "connect"));
  const auto* target = reinterpret_cast<const sockaddr_in*>(address);
  const bool isOwn = target->sin_family == AF_INET && target->sin_addr.s_addr == htonl(INADDR_LOOPBACK) &&
                     ntohs(target->sin_port) == ownPort;
  if (isOwn) return real(socket, address, length);
  errno = ECONNREFUSED;
  return -1;
}
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* /*node*/,
                                                                  const char* /*service*/,
                                                                  const addrinfo* /*hints*/,
                                                                  addrinfo** /*found*/) {
  return EAI_NONAME;
}

namespace quillforth::fuzz {

namespace {

using platform::CurlDownloadService;
using tests::RawServer;
using tests::StrictReader;

struct Answer {
  enum class Asker { file, page, probe };
  enum class End { keepOpen, close, reset };
  Asker asker;
  End end;
  unsigned cuts;  ///< 0: none
  std::string bytes;
};

std::vector<Answer> AnswersIn(std::string_view input) {
  std::vector<Answer> answers;
  for (const std::string& piece : Pieces(input, 8)) {
    if (piece.size() < 2) continue;
    const auto plan = static_cast<unsigned char>(piece[0]);
    answers.push_back({static_cast<Answer::Asker>(plan % 4 % 3), static_cast<Answer::End>(plan / 4 % 3),
                       static_cast<unsigned char>(piece[1]), piece.substr(2)});
  }
  return answers;
}

/// The server of one input.
class Server {
 public:
  explicit Server(std::vector<Answer> answers) : answers_(std::move(answers)) { ownPort = server_.port(); }
  ~Server() { isAsking_ = false; }

  [[nodiscard]] const Answer* next() const { return sent_ < answers_.size() ? &answers_[sent_] : nullptr; }
  [[nodiscard]] std::string url() const { return server_.url("/a"); }
  void beginAsking() { isAsking_ = true; }
  /// Until all that it had to say has been sent. The answer that was sent last; null: none has been sent.
  const Answer* endAsking() {
    isAsking_ = false;
    while (isSending_) std::this_thread::yield();
    return sent_ == 0 ? nullptr : &answers_[sent_ - 1];
  }

 private:
  RawServer::After serve(const RawServer::Connection& connection) {
    const std::lock_guard lock(mutex_);
    if (next() == nullptr) return RawServer::After::close;
    isSending_ = true;
    const Answer& answer = answers_[sent_++];
    send(connection, answer);
    if (answer.end == Answer::End::reset) connection.reset();
    isSending_ = false;
    const bool isKept = answer.end == Answer::End::keepOpen && isWantedAgain(connection.descriptor());
    return isKept ? RawServer::After::keepOpen : RawServer::After::close;
  }
  static void send(const RawServer::Connection& connection, const Answer& answer) {
    std::minstd_rand random(answer.cuts);
    for (std::string_view rest = answer.bytes; !rest.empty();) {
      const std::size_t length =
          answer.cuts == 0 ? rest.size() : random() % (8 + answer.bytes.size() / 4) + 1;
      connection.send(rest.substr(0, length));
      rest.remove_prefix(std::min(length, rest.size()));
      std::this_thread::sleep_for(std::chrono::microseconds(50));  // so that it is read by itself
    }
  }
  // Whether there is another request, or the question is over. Who still waits waits for the end.
  [[nodiscard]] bool isWantedAgain(int descriptor) const {
    pollfd entry{descriptor, POLLIN, 0};
    for (int i = 0; i < 20; ++i) {
      if (::poll(&entry, 1, 1) > 0 || !isAsking_) return true;
    }
    return false;
  }

  const std::vector<Answer> answers_;
  std::mutex mutex_;
  std::atomic<std::size_t> sent_ = 0;
  std::atomic<bool> isAsking_ = false, isSending_ = false;
  RawServer server_{
      [this](const auto& connection, const std::string& /*request*/) { return serve(connection); }};
};

/// What came: a body, or nothing when it failed.
using Taken = std::optional<std::string>;

Taken TakeFile(CurlDownloadService& service, const platform::URL& url) {
  const QDir folder(Home().path());
  tests::DownloadRecorder recorder;
  recorder.folder = folder.path();
  recorder.answers.emplace_back(platform::Credential{QStringLiteral("u"), QStringLiteral("p")});
  static_cast<void>(service.startDownload({url}, recorder));
  while (!recorder.isOver()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  const QStringList names =
      folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
  Require(names.size() == (recorder.error.empty() ? 1 : 0), "a file that came is there, and no other");
  if (names.isEmpty()) return std::nullopt;
  QFile file(folder.filePath(names[0]));
  Require(file.fileName() == recorder.path && file.open(QFile::ReadOnly), "it has its final name");
  Taken body = file.readAll().toStdString();
  file.remove();
  return body;
}

Taken TakePage(CurlDownloadService& service, const platform::URL& url) {
  platform::CurlPageLoader loader(service.thread());
  const platform::PageLoad load = loader.resourceData(url);
  return load.data ? Taken(load.data->toStdString()) : std::nullopt;
}

Taken TakeProbe(CurlDownloadService& service, const platform::URL& url) {
  platform::CurlReadStreamFactory streams(service.thread());
  const auto result = classify::classifyURL(url.absoluteString(), {}, streams);
  const bool isSilent = result.reason == classify::ClassificationReason::serverDidNotAnswer;
  return isSilent ? std::nullopt : Taken(result.type.toLatin1().toStdString());
}

// Whether this asker takes such an answer.
bool IsWanted(Answer::Asker asker, const StrictReader& reader) {
  if (asker == Answer::Asker::probe) return true;
  const int status = reader.status();
  return status >= 200 && status < (asker == Answer::Asker::page ? 400 : 300) &&
         (asker == Answer::Asker::page || status != 206);
}

void Judge(const Answer& answer, Answer::Asker asker, const Taken& taken) {
  const bool isProbe = asker == Answer::Asker::probe;
  const bool isPage = asker == Answer::Asker::page;
  const StrictReader reader(answer.bytes, isProbe, answer.end == Answer::End::reset);
  const bool isCoded = isPage && !reader.value("Content-Encoding").empty();
  const bool isRedirect = reader.status() / 100 == 3 && !reader.value("Location").empty();
  if (taken) {
    Require(reader.isWhole() && IsWanted(asker, reader) && !isRedirect,
            "only a whole answer of its kind is taken");
    Require(isProbe || isCoded || *taken == reader.body(), "what was taken is what was sent");
    Require(!isProbe || *taken == reader.value("Content-Type"), "a probe hears the type");
  } else {
    Require(!reader.isPlain() || !reader.isWhole() || !IsWanted(asker, reader) || isRedirect || isCoded,
            "a good answer is taken");
  }
}

}  // namespace

void Check(std::string_view input) {
  // At a line of a head that begins with NUL, libcurl 7.88 forgets the rest of what it has just received.
  if (input.find(std::string_view("\n\0", 2)) != std::string_view::npos) return;
  static int argumentCount = 0;
  static const QCoreApplication application(argumentCount, nullptr);
  static const platform::CurlGlobal curl;
  static const platform::TransferSettings settings;
  Server server(AnswersIn(input));
  CurlDownloadService service(settings);
  const auto url = platform::URL::URLWithString(QString::fromStdString(server.url()));
  while (const Answer* next = server.next()) {
    const Answer::Asker asker = next->asker;
    server.beginAsking();
    const Taken taken = asker == Answer::Asker::file   ? TakeFile(service, *url)
                        : asker == Answer::Asker::page ? TakePage(service, *url)
                                                       : TakeProbe(service, *url);
    const Answer* last = server.endAsking();
    if (last == nullptr || last < next) return;  // the server was not asked at all
    // What a server says unasked, just when it is asked again, cannot be told from the answer.
    const bool isClear = std::all_of(next, last, [asker](const Answer& earlier) {
      return StrictReader(earlier.bytes, asker == Answer::Asker::probe, false).isAlone();
    });
    if (isClear) Judge(*last, asker, taken);
  }
}

}  // namespace quillforth::fuzz
