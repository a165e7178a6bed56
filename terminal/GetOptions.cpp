// SPDX-License-Identifier: MIT

#include "terminal/GetOptions.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <string_view>

#include "app/Preferences.h"
#include "common/BoundedText.h"
#include "net/URL.h"
#include "terminal/Folders.h"

namespace quillforth::terminal {

namespace {

constexpr qsizetype kMaxSmallFile = qsizetype{4} * 1024 * 1024;
// As many as browsers keep; libcurl looks through those of a host for each that it takes.
constexpr std::size_t kMaxCookies = 5000;
constexpr int kMaxRetries = 100;
constexpr double kMaxWaitSeconds = 86400;

using Error = std::optional<SettingsError>;

SettingsError Mistake(const std::string& message) {
  return {message, kExitUsage};
}

SettingsError Failed(const QString& message) {
  return {message.toStdString()};
}

GivenURL::Kind KindOf(const GetArguments& arguments) {
  if (arguments.page) return GivenURL::Kind::page;
  return arguments.file ? GivenURL::Kind::file : GivenURL::Kind::judged;
}

// The kind that is given for all counts for more than that of a line.
void TakeURL(const GivenURL& url, GivenURL::Kind kind, GetSettings& run) {
  if (const auto meant = MeantURL(url)) {
    run.urls.push_back({meant->absoluteString(), kind == GivenURL::Kind::judged ? url.kind : kind});
  } else {
    run.refused.push_back(url);
  }
}

QStringList ItemsOf(const std::vector<std::string>& lists) {
  QStringList items;
  for (const std::string& list : lists) items.append(QString::fromStdString(list).split(u','));
  return items;
}

QStringList TextsOf(const std::vector<std::string>& texts) {
  QStringList list;
  for (const std::string& text : texts) list.append(QString::fromStdString(text));
  return list;
}

bool HasControlCharacter(std::string_view text) {
  return std::ranges::any_of(text, [](char c) { return (c >= 0 && c < 0x20 && c != '\t') || c == 0x7f; });
}

// Without a byte-order mark.
QList<QByteArray> LinesOf(const QByteArray& bytes) {
  return (bytes.startsWith("\xef\xbb\xbf") ? bytes.sliced(3) : bytes).split('\n');
}

// A field whose meaning is the transfer's own (RFC 9112, section 6; RFC 9110, sections 7.2, 12.5.3 and 14).
bool IsOwnField(std::string_view name) {
  constexpr std::array<std::string_view, 9> kOwn = {
      "Host",    "Connection", "Content-Length", "Transfer-Encoding", "TE",
      "Upgrade", "Expect",     "Range",          "Accept-Encoding"};
  return std::ranges::any_of(kOwn, [name](std::string_view own) { return common::EqualsNoCase(own, name); });
}

Error TakeHeader(const std::string& line, GetOptions& options) {
  constexpr std::string_view kTokenMarks = "!#$%&'*+-.^_`|~";
  const std::size_t colon = line.find(':');
  const std::string name = line.substr(0, colon);
  const bool isToken = !name.empty() && std::ranges::all_of(name, [&](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || kTokenMarks.find(c) != std::string_view::npos;
  });
  if (colon == std::string::npos || !isToken || HasControlCharacter(line)) {
    return Mistake("--header: not of the form \"Name: value\"");  // it may be secret
  }
  if (IsOwnField(name)) return Mistake("--header: \"" + name + "\" is set by the program alone");
  const std::string value = QByteArray::fromStdString(line.substr(colon + 1)).trimmed().toStdString();
  options.headers.emplace_back(name, value);
  return std::nullopt;
}

Error TakeHeaderFile(const std::string& path, const QByteArray& bytes, GetOptions& options) {
  int number = 0;
  for (const QByteArray& line : LinesOf(bytes)) {
    ++number;
    if (line.trimmed().isEmpty()) continue;
    Error error = TakeHeader(line.trimmed().toStdString(), options);
    if (!error) continue;
    error->message += " (" + path + ", line " + std::to_string(number) + ")";
    return error;
  }
  return std::nullopt;
}

Error TakeHeaders(const GetArguments& arguments, GetOptions& options) {
  for (const std::string& text : arguments.headers) {
    if (!text.starts_with('@')) {
      if (Error error = TakeHeader(text, options)) return error;
      continue;
    }
    const InputFile file =
        ReadInputFile(text.substr(1), kMaxSmallFile, QStringLiteral("too long for fields of a request"));
    if (!file.error.isNull()) return Failed(file.error);
    if (Error error = TakeHeaderFile(text.substr(1), file.bytes, options)) return error;
  }
  return std::nullopt;
}

Error TakeCookies(const GetArguments& arguments, GetOptions& options) {
  if (!arguments.cookies) return std::nullopt;
  const InputFile file =
      ReadInputFile(*arguments.cookies, kMaxSmallFile, QStringLiteral("too long for cookies"));
  if (!file.error.isNull()) return Failed(file.error);
  int number = 0;
  for (QByteArray line : LinesOf(file.bytes)) {
    ++number;
    if (line.endsWith('\r')) line.chop(1);
    const bool isCookie = line.startsWith("#HttpOnly_") || !line.startsWith('#');
    if (line.trimmed().isEmpty() || !isCookie) continue;
    // libcurl would take the line of an answer, too.
    if (line.count('\t') < 5 || line.toLower().startsWith("set-cookie:")) {
      return SettingsError{*arguments.cookies + ": line " + std::to_string(number) +
                           " is no cookie in Netscape's form: seven columns with tabs between"};
    }
    if (options.cookies.size() == kMaxCookies)
      return SettingsError{*arguments.cookies + ": too many cookies"};
    options.cookies.push_back(line.toStdString());
  }
  return std::nullopt;
}

Error TakeReferer(const GetArguments& arguments, GetOptions& options) {
  if (!arguments.referer) return std::nullopt;
  const bool isPage = *arguments.referer == "page";
  options.tellsWholeReferrer = true;
  options.run.preferences.insert(app::kSendReferer.key, isPage);
  if (isPage || *arguments.referer == "none") return std::nullopt;
  const auto url = platform::URL::URLWithString(QString::fromStdString(*arguments.referer));
  if (!url || !platform::CanBeFetched(*url)) return Mistake("--referer takes \"page\", \"none\" or a URL");
  options.referrer = *arguments.referer;
  return std::nullopt;
}

Error TakeNumbers(const GetArguments& arguments, GetOptions& options) {
  bool isNumber = true;
  if (arguments.retry) {
    options.run.retries = QString::fromStdString(*arguments.retry).toInt(&isNumber);
    if (!isNumber || options.run.retries < 0 || options.run.retries > kMaxRetries) {
      return Mistake("--retry: \"" + *arguments.retry + "\" is no number from 0 to " +
                     std::to_string(kMaxRetries));
    }
  }
  if (arguments.wait) {
    const double seconds = QString::fromStdString(*arguments.wait).toDouble(&isNumber);
    if (!isNumber || !(seconds >= 0 && seconds <= kMaxWaitSeconds)) {
      return Mistake("--wait: \"" + *arguments.wait + "\" is no number of seconds up to a day");
    }
    options.run.wait = std::chrono::milliseconds(std::llround(seconds * 1000));
  }
  if (!arguments.limitRate) return std::nullopt;
  QString text = QString::fromStdString(*arguments.limitRate).toUpper();
  const qsizetype power = text.isEmpty() ? 0 : QStringView(u"KMG").indexOf(text.back()) + 1;
  if (power > 0) text.chop(1);
  const std::int64_t count = text.toLongLong(&isNumber);
  if (!isNumber || count < 1 || count > (std::int64_t{1} << 30)) {
    return Mistake("--limit-rate: \"" + *arguments.limitRate +
                   "\" is no number of bytes, such as 500k or 2M");
  }
  options.maxBytesASecond = count << (10 * power);
  return std::nullopt;
}

Error TakePreferences(const GetArguments& arguments, platform::AliasManager& aliases, GetSettings& run) {
  for (const std::string& text : arguments.settings) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) return Mistake("--set: \"" + text + "\" has no \"=\"");
    const auto setting = MakeSetting(text.substr(0, equals), text.substr(equals + 1), aliases);
    if (const auto* error = std::get_if<SettingsError>(&setting)) return *error;
    run.preferences.insert(std::get<Setting>(setting).key, std::get<Setting>(setting).value);
  }
  if (arguments.noComment) run.preferences.insert(app::kSetCommentToLocationURL.key, false);
  if (!arguments.ahead) return std::nullopt;
  const auto setting = MakeDownloadsAhead("--ahead", *arguments.ahead);
  if (const auto* error = std::get_if<SettingsError>(&setting)) return *error;
  run.preferences.insert(app::kDownloadsAheadKey, std::get<Setting>(setting).value);
  return std::nullopt;
}

// A file without a note would not be found again.
Error CheckNotes(const GetArguments& arguments, platform::UserDefaults& defaults, const GetSettings& run) {
  OverriddenDefaults overridden(defaults, run.preferences);
  if (!arguments.skipExisting || arguments.archive) return std::nullopt;
  if (app::Preferences(overridden).setCommentToLocationURL()) return std::nullopt;
  return Mistake("--skip-existing needs --archive FILE when files do not get a comment");
}

Error TakeDestination(const GetArguments& arguments, GetOptions& options) {
  if (!arguments.to) return std::nullopt;
  std::error_code error;
  std::string path = std::filesystem::absolute(*arguments.to, error).string();
  const bool isThere = !error && std::filesystem::exists(*arguments.to, error);
  if (error) return SettingsError{*arguments.to + ": " + error.message()};
  if (!arguments.dryRun || isThere) {
    const FolderAtPath folder = ExistingOrNewFolder(*arguments.to);
    if (!folder.path) return SettingsError{folder.error};
    path = *folder.path;
  }
  options.destination = QString::fromStdString(path);
  if (options.destination.toStdString() != path) return SettingsError{path + ": not UTF-8"};
  options.run.preferences.insert(app::kAlwaysPromptForOutputLocation.key, true);
  return std::nullopt;
}

}  // namespace

QVariant OverriddenDefaults::objectForKey(const QString& key) {
  const auto found = overrides_.constFind(key);
  return found != overrides_.constEnd() ? *found : defaults_.objectForKey(key);
}

Error MakeFilter(const FilterArguments& arguments, app::LinkFilter& filter) {
  QString error;
  const auto made = app::LinkFilter::make({.accept = ItemsOf(arguments.accept),
                                           .reject = ItemsOf(arguments.reject),
                                           .match = TextsOf(arguments.match),
                                           .noMatch = TextsOf(arguments.noMatch),
                                           .sameHost = arguments.sameHost},
                                          error);
  if (!made) return Mistake(error.toStdString());
  filter = *made;
  return std::nullopt;
}

Error TakeURLs(const GetArguments& arguments, GetSettings& run) {
  const GivenURL::Kind kind = KindOf(arguments);
  for (const std::string& text : arguments.urls)
    TakeURL({GivenText(QByteArray::fromStdString(text))}, kind, run);
  for (const std::string& path : arguments.inputFiles) {
    const InputFile list = ReadInputFile(path, kMaxListLength, QStringLiteral("too long for a list of URLs"));
    if (!list.error.isNull()) return Failed(list.error);
    for (const GivenURL& url : URLsOfList(list.bytes)) TakeURL(url, kind, run);
  }
  return std::nullopt;
}

Error CheckRest(const GetArguments& arguments) {
  if (!arguments.rest) return std::nullopt;
  if (arguments.rest->empty() || *arguments.rest == "-") return Mistake("--rest takes the name of a file");
  const QFileInfo file(QFile::decodeName(arguments.rest->c_str()));
  if (file.exists() && !file.isFile()) return SettingsError{*arguments.rest + ": not a regular file"};
  const QFileInfo folder(file.absolutePath());
  if (folder.isDir() && folder.isWritable()) return std::nullopt;
  return SettingsError{*arguments.rest + ": no file can be made there"};
}

Error TakeOptions(const GetArguments& arguments, platform::AliasManager& aliases,
                  platform::UserDefaults& defaults, GetOptions& options) {
  options.run.arguments = arguments;
  if (arguments.userAgent && (arguments.userAgent->empty() || HasControlCharacter(*arguments.userAgent))) {
    return Mistake("--user-agent takes a text of one line");
  }
  Error error = MakeFilter(arguments, options.run.filter);
  if (!error) error = TakePreferences(arguments, aliases, options.run);
  if (!error) error = TakeReferer(arguments, options);
  if (!error) error = TakeNumbers(arguments, options);
  if (!error) error = TakeHeaders(arguments, options);
  if (!error) error = TakeCookies(arguments, options);
  if (!error) error = CheckNotes(arguments, defaults, options.run);
  return error ? error : TakeDestination(arguments, options);
}

}  // namespace quillforth::terminal
