// SPDX-License-Identifier: MIT
//
// quillforth-cli: chooses the host, and gives each command the services that it needs and no others.
//
// What a command does not need is not even made: `--version` and `--help` answer before anything is set up.

#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QSocketNotifier>
#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "app/DestinationFolder.h"
#include "classify/InternetConfig.h"
#include "host/Exhaustion.h"
#include "host/FileOrigins.h"
#include "host/HeadlessHost.h"
#include "linux/files/LinuxAliasManager.h"
#include "linux/files/LinuxFileManager.h"
#include "linux/files/LinuxFinder.h"
#include "linux/files/LinuxFolder.h"
#include "linux/session/Interruption.h"
#include "linux/session/LinuxMainBundle.h"
#include "linux/session/SettingsUserDefaults.h"
#include "linux/session/SharedMimeInfo.h"
#include "linux/transfer/CurlPageLoader.h"
#include "linux/transfer/CurlReadStream.h"
#include "linux/transfer/CurlSupport.h"
#include "linux/transfer/TransferRequest.h"
#include "net/URL.h"
#include "terminal/CommandLine.h"
#include "terminal/Commands.h"
#include "terminal/Folders.h"
#include "terminal/Get.h"
#include "terminal/Links.h"
#include "terminal/Output.h"
#include "terminal/ProgressDisplay.h"
#include "terminal/Settings.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

// Whatever the program opens must not become its standard output.
void OpenStandardDescriptors() {
  while (true) {
    const int descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO) ::close(descriptor);
    if (descriptor < 0 || descriptor > STDERR_FILENO) return;
  }
}

// Qt wants a locale of UTF-8, and says so at length where there is none; widths of characters depend on it
// too.
void UseUTF8Locale() {
  std::setlocale(LC_ALL, "");
  if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") == 0) return;
  ::setenv("LC_ALL", "C.UTF-8", 1);
  std::setlocale(LC_ALL, "");
}

bool HasValue(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool IsCapableTerminal(const Output& output) {
  const char* kind = std::getenv("TERM");
  return ::isatty(output.descriptor()) == 1 && kind != nullptr && *kind != '\0' &&
         std::strcmp(kind, "dumb") != 0;
}

int Finish(int exitStatus, const Output& results, Output& errors) {
  ReportFailure(results, errors);
  return results.failed() && exitStatus == kExitSuccess ? kExitFailure : exitStatus;
}

int Complain(const Answer& answer, Output& errors) {
  errors.write(QByteArray::fromStdString(answer.errors));
  return answer.exitStatus;
}

int Complain(const SettingsError& error, const std::string& command, Output& errors) {
  if (error.exitStatus == kExitUsage) return Complain(UsageError(command, error.message), errors);
  errors.write(NoticeText(QString::fromStdString(error.message)));
  return error.exitStatus;
}

classify::CExtensionMap LoadExtensionMap() {
  platform::SharedMimeInfo types;
  platform::LinuxMainBundle bundle;
  classify::CExtensionMap map;
  classify::loadExtensionMappings(types, bundle, map);
  return map;
}

std::unique_ptr<Reporter> MakeReporter(const GetArguments& arguments, Output& results, Output& errors,
                                       const ShownValues& shown) {
  if (arguments.json) return std::make_unique<JsonReporter>(results, errors);
  if (arguments.quiet) return std::make_unique<QuietReporter>(results, errors);
  const bool hasLines = arguments.dryRun || arguments.verbose;
  if (hasLines || !IsCapableTerminal(results)) return std::make_unique<LineReporter>(results, errors);
  const auto colour = HasValue("NO_COLOR") ? ProgressDisplay::Colour::none : ProgressDisplay::Colour::some;
  return std::make_unique<ProgressDisplay>(results, errors, shown, colour);
}

platform::TransferSettings TransfersFor(const GetOptions& options, int interrupt) {
  const GetArguments& arguments = options.run.arguments;
  platform::TransferSettings transfers = platform::SettingsFromEnvironment();
  transfers.keepsCookies = !arguments.noCookies;
  transfers.cookies = options.cookies;
  for (const auto& [name, value] : options.headers) transfers.headers.push_back({name, value});
  for (const GivenURL& url : options.run.urls) {
    if (transfers.headers.empty()) break;
    const auto target = platform::RequestURL::parse(url.text.toStdString());
    if (target) transfers.trustedOrigins.insert(target->origin);
  }
  transfers.userAgent = arguments.userAgent.value_or("");
  transfers.referrer = options.referrer;
  transfers.tellsWholeReferrer = options.tellsWholeReferrer;
  transfers.maxBytesASecond = options.maxBytesASecond;
  transfers.keepsRemoteTime = arguments.remoteTime;
  if (arguments.verbose) {
    transfers.trace = [interrupt](const std::string& line) {
      Output(STDERR_FILENO, interrupt).writeLine(Printable(QString::fromStdString(line)).toUtf8());
    };
  }
  return transfers;
}

// For its owner only: URLs may hold passwords. False when it could not be written, which is said.
bool WriteRest(const GetArguments& arguments, QByteArray rest, const std::vector<GivenURL>& refused,
               Output& errors) {
  if (!arguments.rest || arguments.dryRun) return true;
  for (const GivenURL& url : refused) {
    if (!AppendToList(rest, url)) errors.write(NoticeText(NotInListNotice(url.text)));
  }
  QSaveFile file(QFile::decodeName(arguments.rest->c_str()));
  file.setDirectWriteFallback(true);
  const bool isWritten = file.open(QIODevice::WriteOnly) &&
                         file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
                         file.write(rest) == rest.size() && file.commit();
  if (!isWritten) errors.write(NoticeText(file.fileName() + QStringLiteral(": ") + file.errorString()));
  return isWritten;
}

QString RefusalNotice(const GivenURL& url) {
  return Excerpt(platform::WithoutCredentials(url.text)) +
         (url.isCut ? QStringLiteral(": longer than a line of a list may be")
                    : QStringLiteral(": no http, https or ftp URL"));
}

// Has outputs of its own, because a wait for their readers ends with a signal, too.
int Run(const GetArguments& arguments, Output& /*results*/, Output& unguardedErrors) {
  GetOptions options;
  if (const auto error = CheckRest(arguments)) return Complain(*error, "get", unguardedErrors);
  // No signal is caught yet: a list may come from a person who types it, and who may press Ctrl-C.
  if (const auto error = TakeURLs(arguments, options.run)) return Complain(*error, "get", unguardedErrors);
  const platform::Interruption interruption;
  Output results(STDOUT_FILENO, interruption.descriptor());
  Output errors(STDERR_FILENO, interruption.descriptor());
  for (const GivenURL& url : options.run.refused) {
    if (!errors.write(NoticeText(RefusalNotice(url)))) break;
  }
  if (options.run.urls.empty() && !options.run.refused.empty()) {
    static_cast<void>(WriteRest(arguments, {}, options.run.refused, errors));
    return kExitUsage;
  }
  platform::LinuxAliasManager aliases(platform::HomeFolder());
  platform::SettingsUserDefaults defaults;
  if (const auto error = TakeOptions(arguments, aliases, defaults, options)) {
    return Complain(*error, "get", errors);
  }

  UseUTF8Locale();
  int argumentCount = 1;
  char name[] = "quillforth-cli";
  char* names[] = {name, nullptr};
  const QCoreApplication application(argumentCount, names);
  ShownValues shown;
  const std::unique_ptr<Reporter> reporter = MakeReporter(arguments, results, errors, shown);
  const TerminalPrompt prompt(interruption.descriptor());
  platform::LinuxFileManager files;
  OverriddenDefaults settings(defaults, options.run.preferences);
  TerminalApplication terminalApplication(*reporter, prompt, options.destination, [&] {
    const auto folder = app::StoredOrSupportFolder(settings, aliases, files);
    return folder ? app::FolderPath(*folder, app::kLongestUsedPath) : QString();
  });
  // There is nothing else to do here while a disk is slow.
  host::HeadlessHost services({.mayWait = true}, TransfersFor(options, interruption.descriptor()));
  services.aggregation().tellMoves([&reporter](const std::string& from, const std::string& to) {
    reporter->didMove(QString::fromStdString(from), QString::fromStdString(to));
  });
  host::AssumedNetwork assumedNetwork;
  const app::Host host = arguments.local ? services.host(terminalApplication, assumedNetwork)
                                         : services.host(terminalApplication);
  Get get(host, options.run, *reporter, shown, prompt);
  get.findOriginsBy(&host::ForEachOrigin);
  get.stopWhen([&interruption, &results] { return interruption.happened() || results.failed(); });
  QSocketNotifier notifier(interruption.descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&get, &notifier] {
    notifier.setEnabled(false);
    get.stop();
  });

  Summary summary = get.run();
  const bool isWritten = WriteRest(arguments, get.rest(), options.run.refused, errors);
  if (!isWritten) summary.exitStatus = kExitFailure;
  if (!options.run.refused.empty()) summary.exitStatus = kExitUsage;
  if (interruption.happened()) summary.exitStatus = interruption.exitStatus();
  reporter->end(summary);
  return Finish(summary.exitStatus, results, errors);
}

int Run(const LinksArguments& arguments, Output& results, Output& errors) {
  const bool hasBase = arguments.base || arguments.url;
  if (!hasBase && !std::all_of(arguments.sources.begin(), arguments.sources.end(), IsWebSource)) {
    return Complain(UsageError("links", "a file needs --base or --url"), errors);
  }
  app::LinkFilter filter;
  if (const auto error = MakeFilter(arguments, filter)) return Complain(*error, "links", errors);
  const platform::CurlGlobal curl;
  const platform::TransferSettings transfers = platform::SettingsFromEnvironment();
  platform::TransferThread thread(transfers);
  platform::CurlPageLoader pages(thread);
  const classify::CExtensionMap extensions = LoadExtensionMap();
  for (const QString& word : filter.unknownWords(extensions))
    errors.write(NoticeText(UnknownWordNotice(word)));
  int exitStatus = kExitSuccess;
  for (const std::string& source : arguments.sources) {
    if (const auto error = PrintLinks(source, arguments, extensions, filter, pages, results)) {
      errors.write(NoticeText(*error));
      exitStatus = kExitFailure;
    }
    if (results.failed()) break;
  }
  return Finish(exitStatus, results, errors);
}

int Run(const ClassifyArguments& arguments, Output& results, Output& errors) {
  std::vector<GivenURL> urls;
  for (const std::string& text : arguments.urls) urls.push_back({GivenText(QByteArray::fromStdString(text))});
  for (const std::string& path : arguments.inputFiles) {
    const InputFile list = ReadInputFile(path, kMaxListLength, QStringLiteral("too long for a list of URLs"));
    if (!list.error.isNull()) return Complain(SettingsError{list.error.toStdString()}, "classify", errors);
    std::ranges::move(URLsOfList(list.bytes), std::back_inserter(urls));
  }
  const platform::CurlGlobal curl;
  const platform::TransferSettings transfers = platform::SettingsFromEnvironment();
  platform::TransferThread thread(transfers);
  platform::CurlReadStreamFactory streams(thread);
  PrintClassifications(urls, arguments.json, LoadExtensionMap(), streams, results);
  return Finish(kExitSuccess, results, errors);
}

int Run(const CommentArguments& arguments, Output& results, Output& errors) {
  if (arguments.find) {
    return Finish(RunFind(arguments, &host::ForEachOrigin, results, errors), results, errors);
  }
  platform::AppleEventManager events;
  const platform::LinuxFinder finder(events);
  return Finish(RunComment(arguments, events, results, errors), results, errors);
}

int Run(const ExtensionsArguments& /*arguments*/, Output& results, Output& errors) {
  PrintExtensions(LoadExtensionMap(), results);
  return Finish(kExitSuccess, results, errors);
}

int Run(const SettingsArguments& arguments, Output& results, Output& errors) {
  platform::SettingsUserDefaults defaults;
  platform::LinuxAliasManager aliases(platform::HomeFolder());
  platform::LinuxFileManager files;
  auto error = SettingsCommand(defaults, aliases, files).run(arguments, results, errors);
  if (!error && defaults.hasFailed()) {
    error = SettingsError{defaults.fileName().toStdString() + ": damaged, or cannot be read or written"};
  }
  if (error) return Complain(*error, "settings", errors);
  return Finish(kExitSuccess, results, errors);
}

int Run(const AggregateArguments& arguments, Output& results, Output& errors) {
  UseUTF8Locale();
  platform::LinuxFolderAccess folders;
  return Finish(RunAggregate(arguments, folders, TerminalPrompt(), results, errors), results, errors);
}

int Run(const Answer& answer, Output& results, Output& errors) {
  results.write(QByteArray::fromStdString(answer.results));
  return Finish(Complain(answer, errors), results, errors);
}

}  // namespace

}  // namespace quillforth::terminal

int main(int argc, char** argv) {
  using namespace quillforth::terminal;
  quillforth::host::EndInALineWhenExhausted();
  OpenStandardDescriptors();
  std::signal(SIGPIPE, SIG_IGN);
  Output results(STDOUT_FILENO);
  Output errors(STDERR_FILENO);
  char** const arguments = argv + (argc > 0 ? 1 : 0);
  const Command command = ParseCommandLine(std::vector<std::string>(arguments, argv + argc));
  std::for_each(arguments, argv + argc, &quillforth::platform::OverwriteCredentials);
  return std::visit([&](const auto& chosen) { return Run(chosen, results, errors); }, command);
}
