// SPDX-License-Identifier: MIT
//
// quillforth-cli: chooses the host, and gives each command the services that it needs and no others.
//
// What a command does not need is not even made: `--version` and `--help` answer before anything is set up.

#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "classify/InternetConfig.h"
#include "host/Exhaustion.h"
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
#include "net/URL.h"
#include "terminal/CommandLine.h"
#include "terminal/Commands.h"
#include "terminal/Folders.h"
#include "terminal/Get.h"
#include "terminal/Links.h"
#include "terminal/Output.h"
#include "terminal/ProgressDisplay.h"
#include "terminal/Settings.h"

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

QStringList StringList(const std::vector<std::string>& texts) {
  QStringList list;
  for (const std::string& text : texts) list.append(QString::fromStdString(text));
  return list;
}

// Those that can be downloaded from. The others are reported and left out.
QStringList UsableURLs(const std::vector<std::string>& arguments, Output& errors) {
  QStringList urls = StringList(arguments);
  urls.removeIf([&errors](const QString& text) {
    const std::optional<platform::URL> url = platform::URL::URLWithString(text);
    const bool isUsable = url && platform::CanBeFetched(*url);
    if (!isUsable)
      errors.write(
          NoticeText(platform::WithoutCredentials(text) + QStringLiteral(": no http, https or ftp URL")));
    return !isUsable;
  });
  return urls;
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
                                       const Status& status) {
  if (arguments.json) return std::make_unique<JsonReporter>(results, errors);
  if (!IsCapableTerminal(results)) return std::make_unique<LineReporter>(results, errors);
  const auto colour = HasValue("NO_COLOR") ? ProgressDisplay::Colour::none : ProgressDisplay::Colour::some;
  return std::make_unique<ProgressDisplay>(results, errors, status, colour);
}

struct GetOptions {
  GetSettings settings;
  QString destination;  // null: folder panels ask
};

// Everything about the options of `get` that is checked, or made, before anything is fetched.
std::optional<SettingsError> TakeOptions(const GetArguments& arguments, GetOptions& options) {
  platform::LinuxAliasManager aliases(platform::HomeFolder());
  options.settings.kind = arguments.kind;
  for (const std::string& text : arguments.settings) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) return SettingsError{"--set: \"" + text + "\" has no \"=\"", kExitUsage};
    const auto setting = MakeSetting(text.substr(0, equals), text.substr(equals + 1), aliases);
    if (const auto* error = std::get_if<SettingsError>(&setting)) return *error;
    options.settings.preferences.insert(std::get<Setting>(setting).key, std::get<Setting>(setting).value);
  }
  if (arguments.ahead) {
    const auto setting = MakeDownloadsAhead("--ahead", *arguments.ahead);
    if (const auto* error = std::get_if<SettingsError>(&setting)) return *error;
    options.settings.preferences.insert(app::kDownloadsAheadKey, std::get<Setting>(setting).value);
  }
  if (!arguments.to) return std::nullopt;
  const FolderAtPath folder = ExistingOrNewFolder(*arguments.to);
  if (!folder.path) return SettingsError{folder.error};
  options.destination = QString::fromStdString(*folder.path);
  if (options.destination.toStdString() != *folder.path) return SettingsError{*folder.path + ": not UTF-8"};
  options.settings.preferences.insert(app::kAlwaysPromptForOutputLocation.key, true);
  return std::nullopt;
}

// With outputs of its own: waiting for their readers ends with a signal too.
int Run(const GetArguments& arguments, Output& /*results*/, Output& /*errors*/) {
  const platform::Interruption interruption;
  Output results(STDOUT_FILENO, interruption.descriptor());
  Output errors(STDERR_FILENO, interruption.descriptor());
  const QStringList urls = UsableURLs(arguments.urls, errors);
  if (urls.isEmpty()) return kExitUsage;
  GetOptions options;
  if (const auto error = TakeOptions(arguments, options)) return Complain(*error, "get", errors);

  UseUTF8Locale();
  int argumentCount = 1;
  char name[] = "quillforth-cli";
  char* names[] = {name, nullptr};
  const QCoreApplication application(argumentCount, names);
  Status status;
  const std::unique_ptr<Reporter> reporter = MakeReporter(arguments, results, errors, status);
  const TerminalPrompt prompt(interruption.descriptor());
  TerminalApplication terminalApplication(*reporter, prompt, options.destination);
  // Nothing else is to be done here while a disk is slow.
  host::HeadlessHost services({.mayWaitForDisk = true}, arguments.keepsCookies);
  host::AssumedNetwork assumedNetwork;
  const app::Host host = arguments.local ? services.host(terminalApplication, assumedNetwork)
                                         : services.host(terminalApplication);
  Get get(host, options.settings, *reporter, status, prompt);
  get.stopWhen([&interruption, &results] { return interruption.happened() || results.failed(); });
  QSocketNotifier notifier(interruption.descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&get, &notifier] {
    notifier.setEnabled(false);
    get.stop();
  });

  Summary summary = get.run(urls);
  if (static_cast<std::size_t>(urls.size()) < arguments.urls.size()) summary.exitStatus = kExitUsage;
  if (interruption.happened()) summary.exitStatus = interruption.exitStatus();
  reporter->end(summary);
  return Finish(summary.exitStatus, results, errors);
}

int Run(const LinksArguments& arguments, Output& results, Output& errors) {
  const bool hasBase = arguments.base || arguments.url;
  if (!hasBase && !std::all_of(arguments.sources.begin(), arguments.sources.end(), IsWebSource)) {
    return Complain(UsageError("links", "a file needs --base or --url"), errors);
  }
  const platform::CurlGlobal curl;
  const platform::TransferSettings transfers;
  platform::TransferThread thread(transfers);
  platform::CurlPageLoader pages(thread);
  const classify::CExtensionMap extensions = LoadExtensionMap();
  int exitStatus = kExitSuccess;
  for (const std::string& source : arguments.sources) {
    if (const auto error = PrintLinks(source, arguments, extensions, pages, results)) {
      errors.write(NoticeText(*error));
      exitStatus = kExitFailure;
    }
    if (results.failed()) break;
  }
  return Finish(exitStatus, results, errors);
}

int Run(const ClassifyArguments& arguments, Output& results, Output& errors) {
  const platform::CurlGlobal curl;
  const platform::TransferSettings transfers;
  platform::TransferThread thread(transfers);
  platform::CurlReadStreamFactory streams(thread);
  PrintClassifications(StringList(arguments.urls), LoadExtensionMap(), streams, results);
  return Finish(kExitSuccess, results, errors);
}

int Run(const CommentArguments& arguments, Output& results, Output& errors) {
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
  auto error = SettingsCommand(defaults, aliases, files).run(arguments, results);
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
  const Command command = ParseCommandLine(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
  return std::visit([&](const auto& arguments) { return Run(arguments, results, errors); }, command);
}
