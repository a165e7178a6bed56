// SPDX-License-Identifier: MIT

#include "platform/linux/TransferText.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "platform/LocalizedStrings.h"
#include "platform/linux/FileDescriptor.h"

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

constexpr Phrase kTransferPhrases[] = {
    {CURLE_URL_MALFORMAT, LOCALIZED_CHARS("The URL is malformed.")},
    {CURLE_COULDNT_RESOLVE_PROXY, LOCALIZED_CHARS("The proxy was not found.")},
    {CURLE_COULDNT_RESOLVE_HOST, LOCALIZED_CHARS("The server was not found.")},
    {CURLE_COULDNT_CONNECT, LOCALIZED_CHARS("The server cannot be reached.")},
    {CURLE_WEIRD_SERVER_REPLY, LOCALIZED_CHARS("The server's answer cannot be understood.")},
    {CURLE_FTP_WEIRD_PASS_REPLY, LOCALIZED_CHARS("The server's answer cannot be understood.")},
    {CURLE_FTP_WEIRD_PASV_REPLY, LOCALIZED_CHARS("The server's answer cannot be understood.")},
    {CURLE_FTP_WEIRD_227_FORMAT, LOCALIZED_CHARS("The server's answer cannot be understood.")},
    {CURLE_BAD_FUNCTION_ARGUMENT, LOCALIZED_CHARS("The server's answer cannot be understood.")},
    {CURLE_BAD_CONTENT_ENCODING, LOCALIZED_CHARS("The server's answer cannot be understood.")},
    {CURLE_FTP_CANT_GET_HOST, LOCALIZED_CHARS("The server was not found.")},
    {CURLE_FTP_COULDNT_SET_TYPE, LOCALIZED_CHARS("The server refused to send the file.")},
    {CURLE_REMOTE_ACCESS_DENIED, LOCALIZED_CHARS("The server refused access.")},
    {CURLE_PARTIAL_FILE, LOCALIZED_CHARS("The server sent less than the whole file.")},
    {CURLE_FTP_COULDNT_RETR_FILE, LOCALIZED_CHARS("The server refused to send the file.")},
    {CURLE_OPERATION_TIMEDOUT, LOCALIZED_CHARS("The server took too long.")},
    {CURLE_SSL_CONNECT_ERROR, LOCALIZED_CHARS("No secure connection to the server could be made.")},
    {CURLE_TOO_MANY_REDIRECTS, LOCALIZED_CHARS("The server redirected too many times.")},
    {CURLE_GOT_NOTHING, LOCALIZED_CHARS("The server closed the connection without an answer.")},
    {CURLE_OUT_OF_MEMORY, LOCALIZED_CHARS("There is not enough memory for the transfer.")},
    {CURLE_HTTP2, LOCALIZED_CHARS("The server's answer broke off or was damaged.")},
    {CURLE_HTTP2_STREAM, LOCALIZED_CHARS("The server's answer broke off or was damaged.")},
    {CURLE_SEND_ERROR, LOCALIZED_CHARS("The connection to the server broke off.")},
    {CURLE_RECV_ERROR, LOCALIZED_CHARS("The server's answer broke off or was damaged.")},
    {CURLE_PEER_FAILED_VERIFICATION, LOCALIZED_CHARS("The server's certificate is not trusted.")},
    {CURLE_LOGIN_DENIED, LOCALIZED_CHARS("The server refused the user name or the password.")},
    {CURLE_SSL_CACERT_BADFILE, LOCALIZED_CHARS("The file of trusted certificates cannot be read.")},
    {CURLE_REMOTE_FILE_NOT_FOUND, LOCALIZED_CHARS("The server has no such file.")},
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

}  // namespace

QString HTTPStatusText(long status) {
  const char* phrase = PhraseFor(kStatusPhrases, status);
  const QString number = QString::number(status);
  return LOCALIZED("The server answered %1.")
      .arg(phrase == nullptr ? number : number + u' ' + QLatin1StringView(phrase));
}

QString TransferErrorText(CURLcode code, long status) {
  if (code == CURLE_UNSUPPORTED_PROTOCOL) {
    return status >= 300 ? LOCALIZED("The server redirected to something other than http, https or ftp.")
                         : LOCALIZED("The server's answer cannot be understood.");
  }
  // libcurl says of a socket that was not to be had only that there is no connection.
  const bool isUnconnected = code == CURLE_COULDNT_CONNECT || code == CURLE_COULDNT_RESOLVE_HOST;
  if (isUnconnected && !FileDescriptor(::eventfd(0, EFD_CLOEXEC)).isOpen()) {
    return LOCALIZED("The transfer failed: %1.").arg(QString::fromLocal8Bit(strerror(errno)));
  }
  if (const char* phrase = PhraseFor(kTransferPhrases, code)) return QLatin1StringView(phrase);
  return LOCALIZED("The transfer failed: %1.").arg(QStringLiteral("libcurl %1").arg(int{code}));
}

QString FileErrorText(int error) {
  if (const char* phrase = PhraseFor(kFilePhrases, error)) return QLatin1StringView(phrase);
  return LOCALIZED("The file could not be written: %1.").arg(QString::fromLocal8Bit(strerror(error)));
}

}  // namespace quillforth::platform
