// SPDX-License-Identifier: MIT

#include "terminal/TerminalOutlets.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <utility>

#include "terminal/Text.h"

namespace quillforth::terminal {

using platform::Credential;

namespace {

// A typed folder name as an absolute path; a leading "~/" is the home folder, as in a shell.
QString AbsolutePath(const QString& typed) {
  if (typed == u'~' || typed.startsWith(QStringLiteral("~/"))) return QDir::homePath() + typed.sliced(1);
  return QDir::current().absoluteFilePath(typed);
}

std::optional<Credential> AskForCredential(const TerminalPrompt& prompt,
                                           const platform::AuthenticationChallenge& challenge) {
  // A realm may be as long as a server likes.
  const QString realm = ElideMiddle(Printable(challenge.realm), 60);
  const QString host = ElideMiddle(Printable(challenge.host), 60);
  const QString server = challenge.isProxy ? QStringLiteral("proxy ") + host : host;
  const QString place = realm.isEmpty() ? server : QStringLiteral("\"%1\" at %2").arg(realm, server);
  const QString user =
      prompt.ask(QStringLiteral("User name for %1: ").arg(place), TerminalPrompt::Echo::shown)
          .value_or(QString());
  if (user.isEmpty()) return std::nullopt;
  const std::optional<QString> password =
      prompt.ask(QStringLiteral("Password: "), TerminalPrompt::Echo::hidden);
  if (!password) return std::nullopt;
  return Credential{user, *password};
}

}  // namespace

bool Confirm(const TerminalPrompt& prompt, const app::Alert& alert) {
  const QString question = Printable(alert.messageText) + u'\n' + Printable(alert.informativeText) +
                           QStringLiteral("\n%1 or %2? ").arg(alert.defaultButton, alert.alternateButton);
  const QString answer = prompt.ask(question, TerminalPrompt::Echo::shown).value_or(QString()).trimmed();
  for (const QString& yes : {alert.defaultButton, QStringLiteral("yes"), QStringLiteral("y")}) {
    if (answer.compare(yes, Qt::CaseInsensitive) == 0) return true;
  }
  return false;
}

void TerminalWindow::beginAlertSheet(const QString& title, const QString& message) {
  reporter_.notice(title + QStringLiteral(": ") + message);
}

void TerminalWindow::beginSheetModal(const app::Alert& alert, std::function<void(int returnCode)> didEnd) {
  reporter_.suspend();
  didEnd(Confirm(prompt_, alert) ? app::kAlertFirstButtonReturn : app::kAlertSecondButtonReturn);
}

void TerminalWindow::beginAuthenticationSheet(const platform::AuthenticationChallenge& challenge,
                                              std::function<void(std::optional<Credential>)> answer) {
  reporter_.suspend();
  if (challenge.previousFailureCount > 0) {
    reporter_.notice(QStringLiteral("the user name or the password was refused"));
  }
  answer(AskForCredential(prompt_, challenge));
}

void TerminalApplication::beep() {
  if (::isatty(STDERR_FILENO) == 1) Output(STDERR_FILENO).write("\a");
}

app::AlertResult TerminalApplication::runModalAlert(const app::Alert& alert) {
  const bool isQuestion = !alert.alternateButton.isNull();
  QString text = alert.messageText;
  if (!isQuestion && !alert.informativeText.isEmpty()) text += QStringLiteral(" ") + alert.informativeText;
  // The only question is whether the connection shall be examined.
  if (isQuestion) text += QStringLiteral(" For servers in the local network, use --local.");
  reporter_.notice(text);
  return isQuestion ? app::AlertResult::alternateButton : app::AlertResult::defaultButton;
}

std::optional<QString> TerminalApplication::runOpenPanel(const app::FolderPanel& panel) {
  if (!destination_.isNull()) return destination_;
  if (!TerminalPrompt::isAvailable()) {
    if (!std::exchange(hasToldOfTo_, true)) {
      reporter_.notice(QStringLiteral("a folder is to be asked for, and there is no terminal; use --to DIR"));
    }
    return std::nullopt;
  }
  reporter_.suspend();
  const QString title = panel.title.isEmpty() ? panel.prompt : panel.title;
  const QString offered = keptFolder_.isNull() ? storedFolder_() : keptFolder_;
  const QString shown = offered.isNull() ? QString() : QStringLiteral(" [%1]").arg(Printable(offered));
  const std::optional<QString> typed =
      prompt_.ask(Printable(title) + shown + QStringLiteral(": "), TerminalPrompt::Echo::shown);
  const QString path = typed && !typed->isEmpty() ? AbsolutePath(*typed) : offered;
  if (!typed || path.isNull()) return std::nullopt;
  if (QFileInfo(path).isDir() || QDir().mkpath(path)) {
    keptFolder_ = path;
    return path;
  }
  reporter_.notice(QStringLiteral("cannot make the folder ") + path);
  return std::nullopt;
}

app::ChosenFolder TerminalApplication::runChooseFolderDialog(const app::FolderPanel& panel) {
  const std::optional<QString> path = runOpenPanel(panel);
  if (!path) return {};
  return {0, platform::FileReference(QFile::encodeName(*path).toStdString())};
}

void TerminalApplication::openFile(const QString& path) {
  reporter_.notice(path);
}

TerminalOutlets::TerminalOutlets(ShownValues& shown, Reporter& reporter, const TerminalPrompt& prompt)
    : downloadDestinationTextField_(unseenTexts_[0], unseenHidden_),
      urlTextField_(unseenTexts_[1], unseenHidden_),
      countTextField_(shown.countText, unseenHidden_),
      window_(reporter, prompt),
      fileDownloadProgressBar_(shown),
      fileDownloadProgressText_(shown.progressText, shown.progressTextHidden),
      currentURLTextField_(shown.currentURL, shown.currentURLHidden) {}

app::Outlets TerminalOutlets::outlets() {
  return {.downloadDestinationTextField = downloadDestinationTextField_,
          .urlTextField = urlTextField_,
          .countTextField = countTextField_,
          .preferencesWindow = window_,
          .statusWindow = window_,
          .spinner = spinner_,
          .fileDownloadProgressBar = fileDownloadProgressBar_,
          .fileDownloadProgressText = fileDownloadProgressText_,
          .currentURLTextField = currentURLTextField_,
          .fileDownloadCancelButton = button_,
          .deleteButton = button_,
          .stopButton = button_,
          .openOutputFolderButton = button_,
          .fileTable = fileTable_};
}

}  // namespace quillforth::terminal
