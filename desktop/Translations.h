// SPDX-License-Identifier: MIT
//
// The program's texts in the user's language: German and French where the user's locale (LANGUAGE,
// LC_MESSAGES) asks for them, else English, which is the source.
//
// Translations are embedded; those of the toolkit's own dialogs are taken from the system, where they are
// installed. Main thread.
#pragma once

#include <QLocale>
#include <QString>
#include <QTranslator>

namespace quillforth::desktop {

class Translations {
 public:
  /// Made after the application object and before any window; outlives the windows.
  explicit Translations(const QLocale& locale = QLocale::system());

  /// What the table "LocalizedStrings" has for a text of the controller or of a download's error; the text
  /// itself when it has nothing.
  [[nodiscard]] QString localizedText(const QString& key) const;

 private:
  QTranslator program_;
  QTranslator toolkit_;
};

}  // namespace quillforth::desktop
