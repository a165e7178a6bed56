// SPDX-License-Identifier: MIT

#include "terminal/InputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <QList>
#include <algorithm>
#include <cerrno>
#include <cstring>

namespace quillforth::terminal {

namespace {

constexpr qsizetype kPortion = 65536;
// What is kept of a line that is too long.
constexpr qsizetype kShownLength = 200;

QString NameOf(const std::string& path) {
  return path == "-" ? QStringLiteral("standard input") : QString::fromStdString(path);
}

InputFile Failure(const std::string& path) {
  return {{}, NameOf(path) + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno))};
}

InputFile ReadDescriptor(int descriptor, const std::string& path, qsizetype limit, const QString& tooLong) {
  QByteArray bytes;
  QByteArray chunk(kPortion, Qt::Uninitialized);
  for (;;) {
    const ssize_t length = ::read(descriptor, chunk.data(), static_cast<std::size_t>(chunk.size()));
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) return Failure(path);
    if (length == 0) return {bytes, {}};
    bytes.append(chunk.constData(), length);
    if (bytes.size() > limit) return {{}, NameOf(path) + QStringLiteral(": ") + tooLong};
  }
}

GivenURL TakeLine(const QByteArray& line) {
  if (line.size() > kMaxLineLength)
    return {.text = GivenText(line.first(kShownLength)) + QChar(u'\u2026'), .isCut = true};
  const QList<QByteArray> columns = line.split('\t');
  if (columns.size() < 2 || (columns[0] != "page" && columns[0] != "file"))
    return {GivenText(line.trimmed())};
  return {GivenText(columns[1].trimmed()),
          columns[0] == "page" ? GivenURL::Kind::page : GivenURL::Kind::file};
}

}  // namespace

QString GivenText(const QByteArray& bytes) {
  if (bytes.isValidUtf8()) return QString::fromUtf8(bytes);
  QString text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += value < 0x80 ? QString(QLatin1Char(byte))
                         : QStringLiteral("%") + QString::number(value, 16).toUpper();
  }
  return text;
}

std::optional<platform::URL> MeantURL(const GivenURL& url) {
  return url.isCut ? std::nullopt : platform::URLOfTypedText(url.text);
}

InputFile ReadInputFile(const std::string& path, qsizetype limit, const QString& tooLong) {
  if (path == "-") return ReadDescriptor(STDIN_FILENO, path, limit, tooLong);
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return Failure(path);
  InputFile file = ReadDescriptor(descriptor, path, limit, tooLong);
  ::close(descriptor);
  return file;
}

std::vector<GivenURL> URLsOfList(const QByteArray& list) {
  std::vector<GivenURL> urls;
  for (qsizetype start = list.startsWith("\xef\xbb\xbf") ? 3 : 0; start < list.size();) {
    const qsizetype newline = list.indexOf('\n', start);
    const qsizetype end = newline < 0 ? list.size() : newline;
    const QByteArray line = list.sliced(start, std::min(end - start, kMaxLineLength + 1));
    const QByteArray trimmed = line.trimmed();
    if (!trimmed.isEmpty() && !trimmed.startsWith('#')) urls.push_back(TakeLine(line));
    start = end + 1;
  }
  return urls;
}

bool AppendToList(QByteArray& list, const GivenURL& url) {
  const char* kinds[] = {"", "page\t", "file\t"};
  const QByteArray line = kinds[static_cast<int>(url.kind)] + url.text.toUtf8() + '\n';
  if (URLsOfList(line) != std::vector{url}) return false;
  list += line;
  return true;
}

}  // namespace quillforth::terminal
