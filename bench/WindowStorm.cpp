// SPDX-License-Identifier: MIT
//
// The real window under a storm of random commands, against a server of random delays and faults, with every
// URL accounted for.
//
//   window_storm PHASE SEED SECONDS
//
// One run of the program, from its start to its end; PHASE, from 1 on, says how it ends, and its URLs are of
// their own, so that runs follow each other in one home. What the one before has left is looked for. Prints
// "COUNT<TAB>NAME" lines, and on standard error what it knows of each fault; 1 when there was one. Give it a
// home, a screen and a bus of its own, as window_storm.sh does.

#include <QApplication>
#include <QDir>
#include <QSocketNotifier>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "bench/storm/StormServer.h"
#include "bench/storm/StormUser.h"
#include "linux/session/Interruption.h"

namespace quillforth::bench {

namespace {

constexpr unsigned kPatienceInSeconds = 200;  // beyond the time that was asked for; a hang ends by SIGALRM

std::filesystem::path Home() {
  return QDir::homePath().toStdString();
}

struct Run {
  int phase;
  std::uint64_t seed;
  int seconds;
};

StormUser::End EndOf(const Run& run) {
  using End = StormUser::End;
  constexpr End kEnds[] = {End::atRest, End::question, End::pageLoading, End::panelOpen, End::signal};
  return kEnds[static_cast<std::size_t>(run.phase) % std::size(kEnds)];
}

// The desktop and its services live in here: they have gone when the files are looked at.
void RunProgram(const Run& run, const tests::RawServer& server, const QStringList& folders, Ledger& ledger,
                StormFiles& files) {
  const platform::Interruption interruption;
  host::LinuxHost services;
  services.userDefaults().setObject(QStringLiteral("playSoundWhenDone"), false);
  services.userDefaults().synchronize();
  WatchedHost host(services, ledger, run.seed);
  desktop::Desktop desktop(
      {.makeHost = [&](app::Application& asked) { return host.host(asked); },
       .holdDownloads = [&](bool isHeld) { services.downloads().setDelivering(!isHeld); },
       .interrupt = &platform::Interruption::request,
       .holdEnds = [&](bool isHeld) { services.downloads().setHoldingEnds(isHeld); },
       .holdsAnEnd = [&] { return services.downloads().isHoldingAnEnd(); },
       .settingsFile = services.userDefaults().fileName(),
       .isStored = [&] { return services.userDefaults().isStored(); }});
  QSocketNotifier notifier(interruption.descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
    notifier.setEnabled(false);
    desktop.quit();
  });
  desktop::RequestIntake intake(desktop, services.events(), host::LinuxHost::kSignature);
  desktop.setOpenDocumentsCommand([&intake](const QStringList& uris) { intake.openDocuments(uris); });
  ledger.watch(desktop.controller());
  StormUser user({desktop, intake, host, ledger, files, server, folders, QDir::tempPath()}, run.phase,
                 run.seed);
  if (intake.take({}) != desktop::RequestHandler::Answer::taken) std::exit(EXIT_FAILURE);
  user.begin(std::chrono::seconds(run.seconds), EndOf(run));
  QApplication::exec();
  if (!ledger.isQuitting()) ledger.fault(QStringLiteral("ended by itself"));
  ledger.sample();
}

int RunStorm(const Run& run) {
  QStringList folders{QDir::homePath() + QStringLiteral("/.local/share/Tessary Software/Quillforth")};
  for (const char* name : {"a", "b"}) folders.append(QDir::homePath() + u'/' + QLatin1StringView(name));
  std::vector<std::filesystem::path> paths;
  for (const QString& folder : folders) paths.emplace_back(folder.toStdString());
  Ledger ledger;
  StormFiles files(paths, run.seed);
  std::string origin;
  {
    const tests::RawServer server(StormAnswers(run.seed));
    origin = server.url("");
    RunProgram(run, server, folders, ledger, files);
  }
  ledger.settleAfterEnd();
  files.check(ledger, origin);
  files.checkEarlier(ledger, origin, Home() / "standing");
  return ledger.print() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

}  // namespace quillforth::bench

int main(int argc, char** argv) {
  if (argc != 4) return std::fputs("usage: window_storm PHASE SEED SECONDS\n", stderr), 2;
  const quillforth::bench::Run run{std::atoi(argv[1]), std::strtoull(argv[2], nullptr, 10),
                                   std::atoi(argv[3])};
  std::signal(SIGPIPE, SIG_IGN);
  alarm(static_cast<unsigned>(run.seconds) + quillforth::bench::kPatienceInSeconds);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return quillforth::bench::RunStorm(run);
}
