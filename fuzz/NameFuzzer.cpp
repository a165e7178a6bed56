// SPDX-License-Identifier: MIT
//
// Content-Disposition, URL and type as strangers write them: the name is one safe component.

#include "fuzz/Fuzz.h"
#include "net/SuggestedFilename.h"

namespace quillforth::fuzz {

using namespace platform;

namespace {

bool IsBlankOrDot(QChar c) {
  return c == u'.' || c.isSpace();
}

void CheckName(const QString& name) {
  Require(!name.isEmpty() && name.toUtf8().size() <= kMaxSuggestedFilenameBytes, "a name has 1 to 244 bytes");
  Require(name.isValidUtf16(), "a name has no half characters");
  Require(!IsBlankOrDot(name.front()) && !IsBlankOrDot(name.back()), "no blank or dot at an end");
  for (const QChar c : name) {
    const bool isBidi =
        QStringView(u"\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069").contains(c);
    Require(c != u'/' && c != u'\\' && c.category() != QChar::Other_Control && !isBidi, "a safe character");
    Require(c != QChar::LineSeparator && c != QChar::ParagraphSeparator, "a name is one line");
  }
}

}  // namespace

void Check(std::string_view input) {
  const std::vector<std::string> pieces = Pieces(input, 4);
  const QString extension = QString::fromStdString(pieces[3]);
  CheckName(
      SuggestedFilename({pieces[0], pieces[1], pieces[2]}, [&](std::string_view) { return extension; }));
  const QByteArray name = QByteArray::fromStdString(pieces[0]);
  const QByteArray longer = FilenameWithInsert(name, "-12", 255);
  Require(longer.size() <= 255 && longer.contains("-12"), "a free name has room for its number");
}

}  // namespace quillforth::fuzz
