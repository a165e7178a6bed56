// SPDX-License-Identifier: MIT
//
// Downloads behind logins and TLS.

#include <httplib.h>

#include <openssl/x509v3.h>
#include <QThread>

#include <QCryptographicHash>
#include <cstdio>

#include "net/HeaderText.h"
#include "tests/linux/transfer/DownloadFixture.h"

namespace quillforth::tests {
namespace {

using After = RawServer::After;

const Credential kRight{QStringLiteral("us:er"), QStringLiteral("se cret")};
const Credential kWrong{QStringLiteral("us:er"), QStringLiteral("wrong")};
const Credential kGood{QStringLiteral("user"), QStringLiteral("p\u00e4ss")};

std::string Basic(const Credential& credential) {
  const QByteArray pair = credential.user.toUtf8() + ':' + credential.password.toUtf8();
  return "Basic " + pair.toBase64().toStdString();
}

// The value of a request's header, or empty.
std::string Field(const std::string& request, const std::string& name) {
  const std::size_t start = request.find("\r\n" + name + ": ");
  if (start == std::string::npos) return {};
  const std::size_t value = start + name.size() + 4;
  return request.substr(value, request.find("\r\n", value) - value);
}

QByteArray MD5(const QByteArray& text) {
  return QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex();
}

// Whether a Digest answer proves that `kGood` is known (RFC 7616, section 3.4).
bool IsGoodDigest(const std::string& authorization) {
  if (!authorization.starts_with("Digest ")) return false;
  std::map<std::string, QByteArray> values;
  platform::ParameterScanner scanner(std::string_view(authorization).substr(7), ',');
  while (const auto p = scanner.next()) values[std::string(p->name)] = QByteArray::fromStdString(p->value);
  const QByteArray secret = MD5(kGood.user.toUtf8() + ":r\u00e9alm:" + kGood.password.toUtf8());
  const QByteArray request = MD5("GET:" + values["uri"]);
  return values["response"] == MD5(secret + ':' + values["nonce"] + ':' + values["nc"] + ':' +
                                   values["cnonce"] + ":auth:" + request);
}

// "[proxy ]scheme realm failures;" for each time that the user was asked, of whom the host and port are
// known.
std::string Asked(const DownloadRecorder& recorder) {
  std::string text;
  for (const auto& c : recorder.challenges) {
    text += (c.isProxy ? "proxy " : "") + c.scheme.toStdString() + ' ' + c.realm.toStdString() + ' ' +
            std::to_string(c.previousFailureCount) + ';';
    EXPECT_TRUE(c.host.startsWith(u"127.0.0.1:") && c.host.sliced(10).toInt() > 1023) << c.host.toStdString();
  }
  return text;
}

// Asks for a login with `challenge`, whose body must never be stored; serves "whole" to who knows one.
RawServer::Handler Guarded(const std::string& challenge) {
  return [challenge](RawServer::Connection& connection, const std::string& request) {
    const std::string login = Field(request, "Authorization");
    const bool isKnown = login == Basic(kGood) || IsGoodDigest(login);
    connection.send(isKnown ? HttpReply("200 OK", "whole")
                            : HttpReply("401 No", std::string(100'000, 'n'), challenge));
    return After::keepOpen;
  };
}

TEST_F(DownloadTest, AsksForALoginUntilItIsTakenAndRemembersIt) {
  const std::string digest = "Digest realm=\"r\u00e9alm\", nonce=\"n,1\", qop=\"auth\"";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Basic realm=\"r\u00e9alm\", charset=\"UTF-8\"", "Basic r\u00e9alm"},
      {"basic realm=a b", "Basic a b"},
      {"Basic", "Basic "},
      {digest, "Digest r\u00e9alm"},
      {"Negotiate abc=, Basic realm=\"x\", " + digest, "Digest r\u00e9alm"},
      {"Bogus\r\nWWW-Authenticate: Basic realm=\"r\"", "Basic r"}};
  for (const auto& [challenge, asked] : cases) {
    SCOPED_TRACE(challenge);
    RawServer server(Guarded("WWW-Authenticate: " + challenge + "\r\n"));
    DownloadRecorder result = recorder();
    result.answers = {kWrong, kWrong, kGood};
    EXPECT_EQ(content(download(server.url("/a/x"), result)), "whole") << result.error;
    std::string expected;
    for (const char* failures : {" 0", " 1", " 2"}) expected.append(asked).append(failures).append(";");
    EXPECT_EQ(Asked(result), expected);
    const std::size_t before = server.requests().size();
    for (const char* path : {"/a/y", "/b"}) EXPECT_EQ(Asked(download(server.url(path))), "");
    const std::vector<std::string> requests = server.requests();
    const bool isSentAtOnce = !Field(requests[before], "Authorization").empty();
    EXPECT_EQ(isSentAtOnce, asked.starts_with("Basic"));
    EXPECT_EQ(Field(requests[before + (isSentAtOnce ? 1 : 2)], "Authorization"), "");  // another folder
  }
}

TEST_F(DownloadTest, OnlyTheFirstAnswerToAQuestionThatIsStillOpenCounts) {
  RawServer server(Guarded("WWW-Authenticate: Basic realm=r\r\n"));
  DownloadRecorder cancelled = recorder(), answered = recorder();
  cancelled.leavesSheetOpen = answered.leavesSheetOpen = true;
  const std::shared_ptr<WebDownload> download = start(server.url("/x"), cancelled);
  EXPECT_TRUE(RunLoopUntil([&] { return !cancelled.challenges.empty(); }));
  download->cancel();
  cancelled.openSheet(kGood);
  const std::shared_ptr<WebDownload> other = start(server.url("/x"), answered);
  EXPECT_TRUE(RunLoopUntil([&] { return !answered.challenges.empty(); }));
  answered.openSheet(kGood);
  answered.openSheet(std::nullopt);
  EXPECT_TRUE(RunLoopUntil([&] { return answered.isOver(); }));
  EXPECT_EQ(content(answered), "whole");
  EXPECT_EQ(cancelled.calls, "BW");
  EXPECT_EQ(names().size(), 1);
}

TEST_F(DownloadTest, ALoginThatIsNotGivenOrNotTakenFails) {
  const std::string refused = "The server answered 401 Unauthorized.";
  const std::string unanswered = "The server asks for a user name and a password.";
  RawServer server(Guarded("WWW-Authenticate: Basic realm=r\r\n"));
  DownloadRecorder cancelled = recorder(), windowless = recorder(), stubborn = recorder();
  EXPECT_EQ(download(server.url("/x"), cancelled).error, unanswered);
  windowless.hasWindow = false;
  EXPECT_EQ(download(server.url("/x"), windowless).error, unanswered);
  stubborn.answers.assign(20, kWrong);
  EXPECT_EQ(download(server.url("/x"), stubborn).error, "The server refused the user name or the password.");
  EXPECT_EQ(cancelled.calls + windowless.calls + stubborn.calls, "BWEBWEBWWWWWE");
  for (const char* challenge : {"", "WWW-Authenticate: Negotiate\r\n", "WWW-Authenticate: ,=,;\"\r\n"}) {
    RawServer strange(Guarded(challenge));
    EXPECT_EQ(download(strange.url("/x")).error, refused) << challenge;
  }
}

TEST_F(DownloadTest, AnAnswerThatGoesOnFromNothingAfterALoginFailsAlone) {
  RawServer server([](RawServer::Connection& connection, const std::string& request) {
    const bool isKnown = Field(request, "Authorization") == Basic(kGood);
    connection.send(isKnown ? "HTTP/1.1 200 OK\r\n X: y\r\nContent-Length: 5\r\n\r\nwhole"
                            : HttpReply("401 No", "x", "WWW-Authenticate: Basic realm=r\r\n"));
    return After::keepOpen;
  });
  DownloadRecorder first = recorder();
  first.answers = {kGood};
  EXPECT_EQ(download(server.url("/x"), first).error, "The server's answer cannot be understood.");
  for (int i = 0; i < 20; ++i) EXPECT_FALSE(download(server.url("/y")).error.empty());
}

TEST_F(DownloadTest, ALoginInTheURLIsUsedAndStaysWithItsHost) {
  RawServer other(Guarded("WWW-Authenticate: Basic realm=other\r\n"));
  RawServer server([&](RawServer::Connection& connection, const std::string& request) {
    const std::string login = Field(request, "Authorization");
    const bool isKnown = login == Basic(kRight) || login == Basic(kGood);
    connection.send(isKnown ? HttpReply("302 Found", "", "Location: " + other.url("/next.txt") + "\r\n")
                            : HttpReply("401 No", "x", "WWW-Authenticate: Basic realm=first\r\n"));
    return After::keepOpen;
  });
  const std::string host = "127.0.0.1:" + std::to_string(server.port());
  DownloadRecorder result = recorder(), wrong = recorder();
  result.answers = {kGood};
  EXPECT_EQ(content(download("http://us%3Aer:se%20cret@" + host + "/x", result)), "whole");
  EXPECT_EQ(Asked(result), "Basic other 0;");
  EXPECT_EQ(result.suggested, QStringLiteral("next.txt"));
  EXPECT_EQ(Field(other.requests().at(0), "Authorization"), "");
  download("http://us%3Aer:wrong@" + host + "/x", wrong);
  EXPECT_EQ(Asked(wrong), "Basic first 1;");
  EXPECT_EQ((wrong.error + wrong.failingURL.toStdString()).find("wrong"), std::string::npos);
  EXPECT_EQ(content(download("http://user:p%C3%A4ss@" + host + "/x")), "whole");
}

TEST_F(DownloadTest, AProxyAsksForItsOwnLogin) {
  RawServer proxy([](RawServer::Connection& connection, const std::string& request) {
    const bool isKnown = Field(request, "Proxy-Authorization") == Basic(kGood);
    const bool isMoved = request.starts_with("CONNECT site-d");
    const std::string status = isMoved                           ? "302 Found"
                               : request.starts_with("CONNECT ") ? "502 Bad Gateway"
                                                                 : "200 OK";
    connection.send(isKnown
                        ? HttpReply(status, "whole", isMoved ? "Location: http://site-a.invalid/x\r\n" : "")
                        : HttpReply("407 No", "x", "Proxy-Authenticate: Basic realm=p\r\n"));
    return After::keepOpen;
  });
  for (const char* name : {"http_proxy", "https_proxy"})
    qputenv(name, QByteArray::fromStdString(proxy.url("")));
  DownloadRecorder plain = recorder(), tunnelled = recorder();
  EXPECT_EQ(download("http://site-d.invalid/x").error,
            "The proxy server asks for a user name and a password.");
  plain.answers = {kWrong, kGood};
  EXPECT_EQ(content(download("http://site-a.invalid/x", plain)), "whole");
  EXPECT_EQ(Asked(download("http://site-b.invalid/x")), "");
  EXPECT_EQ(download("https://site-c.invalid/x", tunnelled).error,
            "The proxy server answered 502 Bad Gateway.");
  EXPECT_EQ(download("https://site-d.invalid/x").error, "The proxy server answered 302 Found.");
  for (const char* name : {"http_proxy", "https_proxy"}) qunsetenv(name);
  EXPECT_EQ(Asked(plain) + Asked(tunnelled), "proxy Basic p 0;proxy Basic p 1;");
}

// A certificate of its own for 127.0.0.1 that is good until `end` seconds from now.
struct Certificate {
  explicit Certificate(long end) {
    X509_set_version(x509, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(x509), 1);
    X509_gmtime_adj(X509_getm_notBefore(x509), -1'000'000);
    X509_gmtime_adj(X509_getm_notAfter(x509), end);
    X509_set_pubkey(x509, key);
    X509_NAME* name = X509_get_subject_name(x509);
    const auto* text = reinterpret_cast<const unsigned char*>("test");
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, text, -1, -1, 0);
    X509_set_issuer_name(x509, name);
    X509_EXTENSION* host = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1");
    X509_add_ext(x509, host, -1);
    X509_EXTENSION_free(host);
    X509_sign(x509, key, EVP_sha256());
  }
  ~Certificate() {
    X509_free(x509);
    EVP_PKEY_free(key);
  }
  void save(const QString& path) const {
    FILE* file = std::fopen(path.toUtf8().constData(), "w");
    EXPECT_EQ(PEM_write_X509(file, x509), 1);
    std::fclose(file);
  }
  EVP_PKEY* key = EVP_EC_gen("P-256");
  X509* x509 = X509_new();
};

TEST_F(DownloadTest, TrustsOnlyCertificatesThatAreGoodForTheHost) {
  QTemporaryDir trusted;
  const QString file = trusted.filePath(QStringLiteral("cert.pem"));
  for (const bool isExpired : {false, true}) {
    const Certificate certificate(isExpired ? -1000 : 1000);
    certificate.save(file);
    httplib::SSLServer server(certificate.x509, certificate.key);
    server.Get("/x", [](const auto&, httplib::Response& reply) { reply.set_content("whole", "text/plain"); });
    const std::string port = std::to_string(server.bind_to_any_port("127.0.0.1"));
    std::thread thread([&] { server.listen_after_bind(); });
    for (const bool isKnown : {false, true}) {
      service.reset();
      settings.caCertificateFile = isKnown ? file.toStdString() : std::string();
      restart();
      const bool isGood = isKnown && !isExpired;
      EXPECT_EQ(download("https://127.0.0.1:" + port + "/x").error,
                isGood ? "" : "The server's certificate is not trusted.");
      EXPECT_EQ(download("https://localhost:" + port + "/x").error,
                "The server's certificate is not trusted.");
    }
    service.reset();  // which ends its connections
    server.stop();
    thread.join();
  }
}

TEST_F(DownloadTest, WithoutALengthOnlyTheServersWordEndsABodyOverTLS) {
  QTemporaryDir trusted;
  const Certificate certificate(1000);
  settings.caCertificateFile = trusted.filePath(QStringLiteral("cert.pem")).toStdString();
  certificate.save(QString::fromStdString(settings.caCertificateFile));
  restart();
  const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_server_method()),
                                                                  &SSL_CTX_free);
  SSL_CTX_use_certificate(context.get(), certificate.x509);
  SSL_CTX_use_PrivateKey(context.get(), certificate.key);
  for (const int version : {TLS1_2_VERSION, TLS1_3_VERSION}) {
    SSL_CTX_set_max_proto_version(context.get(), version);
    for (const char* framing : {"", "Content-Length: 5\r\n", "Transfer-Encoding: chunked\r\n"}) {
      for (const bool saysEnd : {true, false}) {
        RawServer server(
            [&](RawServer::Connection& connection, const std::string&) {
              const std::unique_ptr<SSL, decltype(&SSL_free)> tls(SSL_new(context.get()), &SSL_free);
              SSL_set_fd(tls.get(), connection.descriptor());
              char request[4096];
              if (SSL_accept(tls.get()) != 1 || SSL_read(tls.get(), request, sizeof request) <= 0)
                return After::close;
              const std::string body = framing[0] == 'T' ? "5\r\nwhole\r\n0\r\n\r\n" : "whole";
              const std::string reply = std::string("HTTP/1.1 200 OK\r\n") + framing + "\r\n" + body;
              SSL_write(tls.get(), reply.data(), static_cast<int>(reply.size()));
              if (saysEnd) SSL_shutdown(tls.get());
              return After::close;
            },
            RawServer::Greeting::server);
        const DownloadRecorder result = download("https://127.0.0.1:" + std::to_string(server.port()) + "/x");
        const bool isCut = framing[0] == '\0' && !saysEnd;
        EXPECT_EQ(result.error, isCut ? "The server's answer broke off or was damaged." : "") << framing;
      }
    }
  }
}

TEST_F(DownloadTest, FailsAsEverWhatCannotBeSentAndIsStartedInACallback) {
  RawServer server(Serving({{"/f", HttpReply("200 OK", "x")}}));
  DownloadRecorder impossible = recorder();
  DownloadRecorder first = recorder();
  first.hook = [&](char call, WebDownload&) {
    if (call != 'F') return;
    QThread::msleep(2);  // until the transfer thread sleeps
    start("http://127.0.0.1:99999/f", impossible);
  };
  start(server.url("/f"), first);
  EXPECT_TRUE(RunLoopUntil([&] { return impossible.isOver(); })) << first.calls << impossible.calls;
}

}  // namespace
}  // namespace quillforth::tests
