// SPDX-License-Identifier: MIT

#include "desktop/AddSheet.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <initializer_list>

#include "desktop/MimePasteboard.h"
#include "desktop/ShownText.h"
#include "net/URL.h"

namespace quillforth::desktop {

namespace {

constexpr qsizetype kMostListed = 5;
constexpr qsizetype kLongestListed = 60;
constexpr int kShortText = 1 << 16;
constexpr std::chrono::milliseconds kPause(300);

bool LooksLikeHost(const QString& line) {
  static const QRegularExpression host(
      QStringLiteral(R"(^[a-z0-9][a-z0-9-]*(\.[a-z0-9-]+)+(:[0-9]+)?([/?#]\S*)?$)"),
      QRegularExpression::CaseInsensitiveOption);
  return host.match(line).hasMatch();
}

// What ends a sentence or a bracket around the URL is none of it.
QString WithoutPunctuation(const QString& url) {
  qsizetype unopened = url.count(u')') - url.count(u'(');
  qsizetype length = url.size();
  for (; length > 0; --length) {
    const QChar last = url[length - 1];
    const bool isClosing = last == u')' && unopened-- > 0;
    if (!isClosing && !QStringView(u".,;:!?'»”’]}").contains(last)) break;
  }
  return url.first(length);
}

QStringList URLsInProse(const QString& line) {
  static const QRegularExpression url(QStringLiteral(R"((?<![a-z0-9])(?:https?|ftp)://[^\s<>"]+)"),
                                      QRegularExpression::CaseInsensitiveOption);
  QStringList urls;
  for (auto matches = url.globalMatch(line); matches.hasNext();) {
    const QString found = WithoutPunctuation(matches.next().captured());
    if (CanBeTaken(found)) urls.append(found);
  }
  return urls;
}

// Not "Note: see there".
bool BeginsLikeURL(const QString& line) {
  static const QRegularExpression scheme(QStringLiteral("^[a-z][a-z0-9+.-]*:(//|\\S+$)"),
                                         QRegularExpression::CaseInsensitiveOption);
  return scheme.match(line).hasMatch();
}

void List(const QString& title, const QStringList& texts, QStringList& lines) {
  if (texts.isEmpty()) return;
  lines.append(title);
  for (const QString& text : texts.first(std::min(texts.size(), kMostListed))) {
    lines.append(ShownText(platform::WithoutPassword(text), kLongestListed));
  }
  if (texts.size() > kMostListed) lines.append(AddSheet::tr("and %1 more").arg(texts.size() - kMostListed));
}

}  // namespace

TypedURLs TypedURLs::in(const QString& text, const QSet<QString>& whole) {
  TypedURLs typed;
  for (const QString& part : text.split(u'\n', Qt::SkipEmptyParts)) {
    const QString line = part.trimmed();
    const QString host = QStringLiteral("http://") + line;
    if (CanBeTaken(line) || whole.contains(line)) {
      typed.urls.append(line);
    } else if (LooksLikeHost(line) && CanBeTaken(host)) {
      typed.urls.append(host);
      typed.hosts.append(host);
    } else {
      const QStringList found = URLsInProse(line);
      typed.urls += found;
      if (found.isEmpty() && BeginsLikeURL(line)) typed.refused.append(line);
    }
  }
  return typed;
}

AddSheet::AddSheet(const QStringList& urls, QWidget* parent)
    : QDialog(parent), text_(new QPlainTextEdit(this)), hosts_(new QLabel(this)) {
  setWindowTitle(tr("Add URLs"));
  auto* label = new QLabel(tr("&URLs of pages and files, one a line:"), this);
  label->setBuddy(text_);
  text_->setAccessibleName(tr("URLs of pages and files"));
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setTabChangesFocus(true);
  text_->setInputMethodHints(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText);
  hosts_->setTextFormat(Qt::PlainText);
  auto* buttons = new QDialogButtonBox(this);
  add_ = buttons->addButton(tr("&Add"), QDialogButtonBox::AcceptRole);
  buttons->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole);
  QPushButton* open = buttons->addButton(tr("&Open List…"), QDialogButtonBox::ActionRole);
  open->setToolTip(tr("Add the lines of a file"));
  connect(open, &QPushButton::clicked, this, &AddSheet::askForList);
  parse_.setSingleShot(true);
  parse_.setInterval(kPause);
  connect(&parse_, &QTimer::timeout, this, &AddSheet::parse);
  setLayout(new QVBoxLayout);
  for (QWidget* row : std::initializer_list<QWidget*>{label, text_, hosts_, buttons})
    layout()->addWidget(row);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(text_, &QPlainTextEdit::textChanged, this, &AddSheet::followText);
  append(urls.join(u'\n'));
  parse();
  resize(520, 300);
}

void AddSheet::followText() {
  if (text_->document()->characterCount() <= kShortText) return parse();
  add_->setEnabled(false);
  parse_.start();
}

void AddSheet::askForList() {
  auto* dialog = new QFileDialog(this, tr("Open List"));
  dialog->setFileMode(QFileDialog::ExistingFile);
  connect(dialog, &QFileDialog::fileSelected, this, &AddSheet::openList);
  connect(dialog, &QDialog::finished, dialog, &QObject::deleteLater);
  dialog->open();
}

void AddSheet::openList(const QString& path) {
  QFile file(path);
  const bool isOpen = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly);
  const QByteArray bytes = isOpen ? file.read(kMaxLength + 1) : QByteArray();
  if (!isOpen || file.error() != QFileDevice::NoError) {
    hosts_->setText(tr("The list could not be read: %1").arg(file.errorString()));
    return hosts_->show();
  }
  if (bytes.size() > kMaxLength) {
    hosts_->setText(tr("That is too much at a time."));
    return hosts_->show();
  }
  append(QString::fromUtf8(bytes));
}

void AddSheet::append(const QString& lines) {
  for (const QString& part : lines.split(u'\n', Qt::SkipEmptyParts)) {
    const QString line = part.trimmed();
    const bool isWhole = platform::HasWebScheme(line) && line.size() <= app::Pasteboard::kMaxStringLength;
    if (isWhole && !CanBeTaken(line)) whole_.insert(line);
  }
  const QString text = text_->toPlainText();
  const bool isLineEnded = text.isEmpty() || text.endsWith(u'\n');
  text_->setPlainText(text + (isLineEnded ? QString() : QString(u'\n')) + lines);
}

void AddSheet::parse() {
  parse_.stop();
  const bool isTooLong = text_->document()->characterCount() > kMaxLength;
  typed_ = isTooLong ? TypedURLs() : TypedURLs::in(text_->toPlainText(), whole_);
  QStringList lines;
  if (isTooLong) lines.append(tr("That is too much at a time."));
  List(tr("Lines that are taken for hosts:"), typed_.hosts, lines);
  List(tr("Not taken:"), typed_.refused, lines);
  hosts_->setText(lines.join(u'\n'));
  hosts_->setHidden(lines.isEmpty());
  add_->setEnabled(!typed_.urls.isEmpty());
}

}  // namespace quillforth::desktop
