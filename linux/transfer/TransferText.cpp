// SPDX-License-Identifier: MIT

#include "linux/transfer/TransferText.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "linux/files/FileDescriptor.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::platform {

namespace {

struct Phrase {
  int code;
  const char* text;
};

// RFC 9110, section 15, and the IANA registry.
constexpr Phrase kStatusPhrases[] = {
    {101, "Switching Protocols"},
    {206, "Partial Content"},
    {300, "Multiple Choices"},
    {301, "Moved Permanently"},
    {302, "Found"},
    {303, "See Other"},
    {304, "Not Modified"},
    {305, "Use Proxy"},
    {307, "Temporary Redirect"},
    {308, "Permanent Redirect"},
    {400, "Bad Request"},
    {401, "Unauthorized"},
    {402, "Payment Required"},
    {403, "Forbidden"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {406, "Not Acceptable"},
    {407, "Proxy Authentication Required"},
    {408, "Request Timeout"},
    {409, "Conflict"},
    {410, "Gone"},
    {411, "Length Required"},
    {412, "Precondition Failed"},
    {413, "Content Too Large"},
    {414, "URI Too Long"},
    {415, "Unsupported Media Type"},
    {416, "Range Not Satisfiable"},
    {417, "Expectation Failed"},
    {421, "Misdirected Request"},
    {422, "Unprocessable Content"},
    {423, "Locked"},
    {424, "Failed Dependency"},
    {425, "Too Early"},
    {426, "Upgrade Required"},
    {428, "Precondition Required"},
    {429, "Too Many Requests"},
    {431, "Request Header Fields Too Large"},
    {451, "Unavailable For Legal Reasons"},
    {500, "Internal Server Error"},
    {501, "Not Implemented"},
    {502, "Bad Gateway"},
    {503, "Service Unavailable"},
    {504, "Gateway Timeout"},
    {505, "HTTP Version Not Supported"},
    {507, "Insufficient Storage"},
    {508, "Loop Detected"},
    {511, "Network Authentication Required"},
};

struct OutcomePhrase {
  OutcomeKind kind;
  const char* word;
  const char* text;  // null: the detail says more
};

constexpr OutcomePhrase kOutcomePhrases[] = {
    {OutcomeKind::malformedURL, "malformedURL", LOCALIZED_CHARS("The URL is malformed.")},
    {OutcomeKind::unsupportedURL, "unsupportedURL",
     LOCALIZED_CHARS("Only http, https and ftp URLs can be downloaded.")},
    {OutcomeKind::proxyNotFound, "proxyNotFound", LOCALIZED_CHARS("The proxy was not found.")},
    {OutcomeKind::hostNotFound, "hostNotFound", LOCALIZED_CHARS("The server was not found.")},
    {OutcomeKind::unreachable, "unreachable", LOCALIZED_CHARS("The server cannot be reached.")},
    {OutcomeKind::noSecureConnection, "noSecureConnection",
     LOCALIZED_CHARS("No secure connection to the server could be made.")},
    {OutcomeKind::untrustedCertificate, "untrustedCertificate",
     LOCALIZED_CHARS("The server's certificate is not trusted.")},
    {OutcomeKind::unreadableCertificates, "unreadableCertificates",
     LOCALIZED_CHARS("The file of trusted certificates cannot be read.")},
    {OutcomeKind::silence, "silence", LOCALIZED_CHARS("The server has sent nothing for too long.")},
    {OutcomeKind::slowHead, "slowHead",
     LOCALIZED_CHARS("The server took too long to send the header of its answer.")},
    {OutcomeKind::timeout, "timeout", LOCALIZED_CHARS("The server took too long.")},
    {OutcomeKind::noAnswer, "noAnswer",
     LOCALIZED_CHARS("The server closed the connection without an answer.")},
    {OutcomeKind::connectionLost, "connectionLost",
     LOCALIZED_CHARS("The connection to the server broke off.")},
    {OutcomeKind::brokenOff, "brokenOff", LOCALIZED_CHARS("The server's answer broke off or was damaged.")},
    {OutcomeKind::incomplete, "incomplete", LOCALIZED_CHARS("The server sent less than the whole file.")},
    {OutcomeKind::malformedAnswer, "malformedAnswer",
     LOCALIZED_CHARS("The server's answer cannot be understood.")},
    {OutcomeKind::impossibleLength, "impossibleLength",
     LOCALIZED_CHARS("The server announced an impossible length.")},
    {OutcomeKind::headTooLong, "headTooLong",
     LOCALIZED_CHARS("The header of the server's answer is too long.")},
    {OutcomeKind::unknownCoding, "unknownCoding",
     LOCALIZED_CHARS("The server sent the page in a coding that is not known.")},
    {OutcomeKind::tooLong, "tooLong", LOCALIZED_CHARS("The page is too long.")},
    {OutcomeKind::folder, "folder", LOCALIZED_CHARS("This is a folder, not a file.")},
    {OutcomeKind::accessDenied, "accessDenied", LOCALIZED_CHARS("The server refused access.")},
    {OutcomeKind::fileRefused, "fileRefused", LOCALIZED_CHARS("The server refused to send the file.")},
    {OutcomeKind::noSuchFile, "noSuchFile", LOCALIZED_CHARS("The server has no such file.")},
    {OutcomeKind::tooManyRedirects, "tooManyRedirects",
     LOCALIZED_CHARS("The server redirected too many times.")},
    {OutcomeKind::forbiddenRedirect, "forbiddenRedirect",
     LOCALIZED_CHARS("The server redirected to something other than http, https or ftp.")},
    {OutcomeKind::loginWanted, "loginWanted",
     LOCALIZED_CHARS("The server asks for a user name and a password.")},
    {OutcomeKind::loginRefused, "loginRefused",
     LOCALIZED_CHARS("The server refused the user name or the password.")},
    {OutcomeKind::proxyLoginWanted, "proxyLoginWanted",
     LOCALIZED_CHARS("The proxy server asks for a user name and a password.")},
    {OutcomeKind::proxyLoginRefused, "proxyLoginRefused",
     LOCALIZED_CHARS("The proxy server refused the user name or the password.")},
    {OutcomeKind::noDestination, "noDestination",
     LOCALIZED_CHARS("There is no destination folder for the file.")},
    {OutcomeKind::status, "status", nullptr},
    {OutcomeKind::proxyStatus, "proxyStatus", nullptr},
    {OutcomeKind::system, "system", nullptr},
    {OutcomeKind::file, "file", nullptr},
    {OutcomeKind::other, "other", nullptr},
    {OutcomeKind::outOfMemory, "outOfMemory",
     LOCALIZED_CHARS("There is not enough memory for the transfer.")},
};

struct OutcomeCode {
  CURLcode code;
  OutcomeKind kind;
};

constexpr OutcomeCode kOutcomeCodes[] = {
    {CURLE_URL_MALFORMAT, OutcomeKind::malformedURL},
    {CURLE_COULDNT_RESOLVE_PROXY, OutcomeKind::proxyNotFound},
    {CURLE_COULDNT_RESOLVE_HOST, OutcomeKind::hostNotFound},
    {CURLE_FTP_CANT_GET_HOST, OutcomeKind::hostNotFound},
    {CURLE_COULDNT_CONNECT, OutcomeKind::unreachable},
    {CURLE_SSL_CONNECT_ERROR, OutcomeKind::noSecureConnection},
    {CURLE_PEER_FAILED_VERIFICATION, OutcomeKind::untrustedCertificate},
    {CURLE_SSL_CACERT_BADFILE, OutcomeKind::unreadableCertificates},
    {CURLE_OPERATION_TIMEDOUT, OutcomeKind::timeout},
    {CURLE_ABORTED_BY_CALLBACK, OutcomeKind::silence},
    {CURLE_GOT_NOTHING, OutcomeKind::noAnswer},
    {CURLE_SEND_ERROR, OutcomeKind::connectionLost},
    {CURLE_RECV_ERROR, OutcomeKind::brokenOff},
    {CURLE_BAD_CONTENT_ENCODING, OutcomeKind::brokenOff},
    {CURLE_PARTIAL_FILE, OutcomeKind::incomplete},
    {CURLE_WEIRD_SERVER_REPLY, OutcomeKind::malformedAnswer},
    {CURLE_UNSUPPORTED_PROTOCOL, OutcomeKind::malformedAnswer},
    {CURLE_FTP_WEIRD_PASS_REPLY, OutcomeKind::malformedAnswer},
    {CURLE_FTP_WEIRD_PASV_REPLY, OutcomeKind::malformedAnswer},
    {CURLE_FTP_WEIRD_227_FORMAT, OutcomeKind::malformedAnswer},
    {CURLE_BAD_FUNCTION_ARGUMENT, OutcomeKind::malformedAnswer},
    {CURLE_REMOTE_ACCESS_DENIED, OutcomeKind::accessDenied},
    {CURLE_FTP_COULDNT_SET_TYPE, OutcomeKind::fileRefused},
    {CURLE_FTP_COULDNT_RETR_FILE, OutcomeKind::fileRefused},
    {CURLE_REMOTE_FILE_NOT_FOUND, OutcomeKind::noSuchFile},
    {CURLE_LOGIN_DENIED, OutcomeKind::loginRefused},
    {CURLE_OUT_OF_MEMORY, OutcomeKind::outOfMemory},
};

constexpr Phrase kFilePhrases[] = {
    {ENOENT, LOCALIZED_CHARS("The destination folder does not exist.")},
    {ENOTDIR, LOCALIZED_CHARS("The destination folder does not exist.")},
    {EISDIR, LOCALIZED_CHARS("A folder has the name of the file.")},
    {ESTALE, LOCALIZED_CHARS("The unfinished file was removed or replaced by something else.")},
    {ENOSPC, LOCALIZED_CHARS("There is not enough space in the destination folder.")},
    {EDQUOT, LOCALIZED_CHARS("There is not enough space in the destination folder.")},
    {EACCES, LOCALIZED_CHARS("The destination folder is not writable.")},
    {EPERM, LOCALIZED_CHARS("The destination folder is not writable.")},
    {EROFS, LOCALIZED_CHARS("The destination folder is not writable.")},
    {EFBIG, LOCALIZED_CHARS("The file is larger than the destination folder can hold.")},
    {ENAMETOOLONG, LOCALIZED_CHARS("The name of the file is too long for the destination folder.")},
};

template <std::size_t Size>
const char* PhraseFor(const Phrase (&phrases)[Size], long code) {
  const auto found = std::find_if(std::begin(phrases), std::end(phrases),
                                  [code](const Phrase& p) { return p.code == code; });
  return found == std::end(phrases) ? nullptr : found->text;
}

QString StatusText(OutcomeKind kind, long status) {
  const char* phrase = PhraseFor(kStatusPhrases, status);
  const QString number = QString::number(status);
  const QString& answer = kind == OutcomeKind::proxyStatus ? LOCALIZED("The proxy server answered %1.")
                                                           : LOCALIZED("The server answered %1.");
  return answer.arg(phrase == nullptr ? number : number + u' ' + QLatin1StringView(phrase));
}

const OutcomePhrase& PhraseOf(OutcomeKind kind) {
  return *std::find_if(std::begin(kOutcomePhrases), std::end(kOutcomePhrases),
                       [kind](const OutcomePhrase& p) { return p.kind == kind; });
}

bool HasStatus(OutcomeKind kind) {
  return kind == OutcomeKind::status || kind == OutcomeKind::proxyStatus;
}

// Whether the failure is one of the moment, and not of the file.
bool MayPass(OutcomeKind kind, long status) {
  constexpr OutcomeKind kPassing[] = {
      OutcomeKind::silence,        OutcomeKind::slowHead,  OutcomeKind::timeout,   OutcomeKind::noAnswer,
      OutcomeKind::connectionLost, OutcomeKind::brokenOff, OutcomeKind::incomplete};
  if (HasStatus(kind)) return status == 408 || status == 429 || status >= 500;
  return std::find(std::begin(kPassing), std::end(kPassing), kind) != std::end(kPassing);
}

}  // namespace

QString TransferOutcome::sentence() const {
  switch (kind) {
    case OutcomeKind::whole:
      return {};
    case OutcomeKind::status:
    case OutcomeKind::proxyStatus:
      return StatusText(kind, detail);
    case OutcomeKind::file:
      return FileErrorText(static_cast<int>(detail));
    case OutcomeKind::system:
      return LOCALIZED("The transfer failed: %1.")
          .arg(QString::fromLocal8Bit(strerror(static_cast<int>(detail))));
    case OutcomeKind::other:
      return LOCALIZED("The transfer failed: %1.").arg(QStringLiteral("libcurl %1").arg(detail));
    default:
      return QLatin1StringView(PhraseOf(kind).text);
  }
}

TransferFailure TransferOutcome::failure() const {
  if (isWhole()) return {};
  const int status = HasStatus(kind) ? static_cast<int>(detail) : 0;
  return {QString::fromLatin1(PhraseOf(kind).word), status, retryAfter, MayPass(kind, detail), host};
}

TransferOutcome OutcomeOf(CURLcode code) {
  if (code == CURLE_OK) return {};
  // When no socket can be made, libcurl says only that there is no connection.
  const bool isUnconnected = code == CURLE_COULDNT_CONNECT || code == CURLE_COULDNT_RESOLVE_HOST;
  if (isUnconnected && !FileDescriptor(::eventfd(0, EFD_CLOEXEC)).isOpen())
    return {OutcomeKind::system, errno};
  const auto* found = std::find_if(std::begin(kOutcomeCodes), std::end(kOutcomeCodes),
                                   [code](const OutcomeCode& c) { return c.code == code; });
  return found == std::end(kOutcomeCodes) ? TransferOutcome{OutcomeKind::other, code}
                                          : TransferOutcome{found->kind};
}

QString FileErrorText(int error) {
  if (const char* phrase = PhraseFor(kFilePhrases, error)) return QLatin1StringView(phrase);
  return LOCALIZED("The file could not be written: %1.").arg(QString::fromLocal8Bit(strerror(error)));
}

}  // namespace quillforth::platform
