// SPDX-License-Identifier: MIT

#include "linux/session/SyslogSystemLog.h"

#include <syslog.h>

namespace quillforth::platform {

namespace {

constexpr qsizetype kLongestMessage = 2000;

bool IsUnprintable(QChar c) {
  switch (c.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
      return true;
    default:
      return false;
  }
}

QString Escape(QChar c) {
  if (c == u'\n') return QStringLiteral("\\n");
  if (c == u'\t') return QStringLiteral("\\t");
  const ushort code = c.unicode();
  return code < 0x100 ? QStringLiteral("\\x%1").arg(code, 2, 16, QChar(u'0'))
                      : QStringLiteral("\\u%1").arg(code, 4, 16, QChar(u'0'));
}

}  // namespace

QString EscapedLogLine(const QString& message) {
  QString line;
  for (const QChar c : QStringView(message).left(kLongestMessage)) {
    if (IsUnprintable(c)) {
      line += Escape(c);
    } else {
      line += c;
    }
  }
  return line;
}

void SyslogSystemLog::log(const QString& message) {
  ::syslog(LOG_USER | LOG_ERR, "%s", EscapedLogLine(message).toUtf8().constData());
}

}  // namespace quillforth::platform
