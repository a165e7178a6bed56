// SPDX-License-Identifier: MIT
//
// The sheet that URLs are typed into, one a line, or a text with URLs in it.
//
// A host without "http://" is taken for a URL here, because people type it so. File names look alike: it
// counts only alone on its line, and is listed before it is taken. Main thread.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSet>
#include <QStringList>
#include <QTimer>

namespace quillforth::desktop {

struct TypedURLs {
  QStringList urls;     ///< of http, https or ftp, in their order; with the hosts
  QStringList hosts;    ///< those of them that were typed without "http://", which they have here
  QStringList refused;  ///< lines that begin as a URL does, and hold none

  /// In prose only what begins with "http://", "https://" or "ftp://" counts, without the punctuation around.
  /// `whole`: lines that are URLs as they stand, whatever is in them.
  [[nodiscard]] static TypedURLs in(const QString& text, const QSet<QString>& whole = {});
};

class AddSheet final : public QDialog {
  Q_OBJECT

 public:
  static constexpr qsizetype kMaxLength = 16
                                          << 20;  ///< of the text, in UTF-16 units, and of a file, in bytes

  /// `urls` stand in it when it opens, and are taken as they are.
  AddSheet(const QStringList& urls, QWidget* parent);
  /// What is to be taken when it is accepted.
  [[nodiscard]] QStringList urls() const { return typed_.urls; }

 private:
  void followText();
  void parse();
  /// Puts these lines behind the text. Those that begin with "http://", "https://" or "ftp://" stay whole.
  void append(const QString& lines);
  void askForList();
  /// Puts what stands in the file behind the text.
  void openList(const QString& path);

  QPlainTextEdit* text_;
  QLabel* hosts_;
  QPushButton* add_;
  QTimer parse_;  // a long text is not read with every letter
  TypedURLs typed_;
  QSet<QString> whole_;  // lines of lists
};

}  // namespace quillforth::desktop
