// SPDX-License-Identifier: MIT
//
// How the controller's texts are put into the user's language.
//
// The source is English, and is its own key. Wherever such a text stands in the code, QT_TRANSLATE_NOOP marks
// it for the table "LocalizedStrings", so that lupdate finds it; the host looks it up when it is shown. Log
// lines stay English. Pure; any thread.
#pragma once

#include <QString>
#include <functional>
#include <initializer_list>

namespace quillforth::app {

/// The text to show for an English one: that one itself where there is no translation.
using LocalizedText = std::function<QString(const QString& key)>;

/// The English texts as they stand.
[[nodiscard]] inline QString EnglishText(const QString& key) {
  return key;
}

/// `format` in the user's language, its placeholders %d, %@ and %s replaced in order by `arguments`, which
/// are not looked at again. A translation with other placeholders, or in another order, is not used.
[[nodiscard]] QString LocalizedFormat(const LocalizedText& localizedText, const QString& format,
                                      std::initializer_list<QString> arguments);

/// How a text that may be missing reads in a log line, a tool tip or the progress line: "(null)" for a null
/// text, every other one as it is. An empty text is not null.
[[nodiscard]] inline QString TextOrNull(const QString& text) {
  return text.isNull() ? QStringLiteral("(null)") : text;
}

}  // namespace quillforth::app
