// SPDX-License-Identifier: MIT

#include "desktop/SelectionReader.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QEventLoop>
#include <QGuiApplication>
#include <QRasterWindow>
#include <cstdio>
#include <utility>

#include "app/Pasteboard.h"
#include "desktop/MimePasteboard.h"

namespace quillforth::desktop {

namespace {

constexpr int kFocusPatienceInMilliseconds = 1000;

// A Wayland compositor tells the selection only to the program that has the keyboard.
void WaitForFocus(QRasterWindow& window) {
  window.setFlag(Qt::FramelessWindowHint);
  window.resize(1, 1);
  QEventLoop loop;
  QObject::connect(&window, &QWindow::activeChanged, &loop, &QEventLoop::quit);
  QTimer deadline;
  deadline.callOnTimeout(&loop, &QEventLoop::quit);
  deadline.start(kFocusPatienceInMilliseconds);
  window.show();
  loop.exec();
}

QStringList HelperOptions(SelectionSource source) {
  switch (source) {
    case SelectionSource::clipboard:
      return {QStringLiteral("--print-clipboard")};
    case SelectionSource::pasteboard:
      return {QStringLiteral("--print-pasteboard")};
    default:
      return {QStringLiteral("--print-selection")};
  }
}

// What a helper that has ended has printed.
std::optional<QString> TextOf(QProcess& helper) {
  QString text = QString::fromUtf8(helper.readAllStandardOutput());
  const bool isWhole = helper.exitStatus() == QProcess::NormalExit && helper.exitCode() == 0;
  if (!isWhole || text.isEmpty()) return std::nullopt;
  return text;
}

}  // namespace

SelectionReader::SelectionReader() {
  helper_.setStandardErrorFile(QProcess::nullDevice());
  deadline_.setSingleShot(true);
  deadline_.callOnTimeout([this] { helper_.kill(); });
  QObject::connect(&helper_, &QProcess::finished, &deadline_, [this] { finish(); });
  QObject::connect(QGuiApplication::clipboard(), &QClipboard::changed, &deadline_,
                   [this] { isOutdated_ = true; });
}

SelectionReader::~SelectionReader() {
  QObject::disconnect(&helper_, nullptr, &deadline_, nullptr);
  helper_.kill();
  helper_.waitForFinished();
}

void SelectionReader::read(SelectionSource source, std::function<void(const QString&)> take) {
  if (helper_.state() != QProcess::NotRunning && !isOutdated_) return;
  forget();
  isOutdated_ = false;
  take_ = std::move(take);
  helper_.start(QCoreApplication::applicationFilePath(), HelperOptions(source));
  deadline_.start(kPatienceInMilliseconds);
}

void SelectionReader::forget() {
  take_ = nullptr;
  helper_.kill();
  helper_.waitForFinished();
}

void SelectionReader::finish() {
  deadline_.stop();
  const auto take = std::exchange(take_, nullptr);
  if (take) take(TextOf(helper_).value_or(QString()));
}

std::optional<QString> ReadClipboard() {
  QProcess helper;
  helper.setStandardErrorFile(QProcess::nullDevice());
  helper.start(QCoreApplication::applicationFilePath(), HelperOptions(SelectionSource::clipboard));
  if (!helper.waitForFinished(SelectionReader::kPatienceInMilliseconds)) {
    helper.kill();
    helper.waitForFinished();
    return std::nullopt;
  }
  return TextOf(helper);
}

void PrintSelection(SelectionSource source) {
  QRasterWindow window;
  if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) WaitForFocus(window);
  const QClipboard& clipboard = *QGuiApplication::clipboard();
  const bool isSelectionAsked =
      source == SelectionSource::selectionOrClipboard && clipboard.supportsSelection();
  QString text = isSelectionAsked ? clipboard.text(QClipboard::Selection) : QString();
  if (source == SelectionSource::pasteboard) {
    const QMimeData* data = clipboard.mimeData();
    text = data == nullptr ? QString() : PasteboardText(*data);
  } else if (text.isEmpty()) {
    text = clipboard.text(QClipboard::Clipboard);
  }
  if (source != SelectionSource::pasteboard && text.size() > app::Pasteboard::kMaxStringLength) return;
  const QByteArray bytes = text.toUtf8();
  std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

}  // namespace quillforth::desktop
