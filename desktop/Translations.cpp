// SPDX-License-Identifier: MIT

#include "desktop/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace quillforth::desktop {

namespace {

// The errors that name a detail; it is put into the translation as it is.
constexpr const char* kDetailedErrors[] = {"The server answered %1.", "The proxy server answered %1.",
                                           "The transfer failed: %1.", "The file could not be written: %1."};

QString Translation(const QString& key) {
  return QCoreApplication::translate("LocalizedStrings", key.toUtf8().constData());
}

// The detail of `text`, when it is `format` with something in the place of "%1".
QString Detail(const QString& text, const QString& format) {
  const qsizetype at = format.indexOf(u"%1");
  const qsizetype length = text.size() - (format.size() - 2);
  if (length <= 0 || !text.startsWith(QStringView(format).first(at)) ||
      !text.endsWith(QStringView(format).sliced(at + 2))) {
    return {};
  }
  return text.sliced(at, length);
}

}  // namespace

Translations::Translations(const QLocale& locale) {
  for (const QString& name : locale.uiLanguages()) {
    const QString language = name.section(u'-', 0, 0);
    if (language == u"en" || language == u"C") return;  // preferred to all that follow
    if (!program_.load(QStringLiteral(":/translations/LocalizedStrings_") + language)) continue;
    // The later one is asked first: the program's texts win.
    if (toolkit_.load(QStringLiteral("qtbase_") + language,
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
      QCoreApplication::installTranslator(&toolkit_);
    }
    QCoreApplication::installTranslator(&program_);
    return;
  }
}

QString Translations::localizedText(const QString& key) const {
  if (program_.isEmpty()) return key;
  QString translation = Translation(key);
  if (translation != key) return translation;
  for (const char* source : kDetailedErrors) {
    const QString format = QString::fromLatin1(source);
    const QString detail = Detail(key, format);
    if (!detail.isEmpty()) return Translation(format).replace(QLatin1String("%1"), detail);
  }
  return key;
}

}  // namespace quillforth::desktop
