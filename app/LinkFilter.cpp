// SPDX-License-Identifier: MIT

#include "app/LinkFilter.h"

#include <QHash>
#include <algorithm>
#include <iterator>
#include <utility>

#include "common/BoundedText.h"
#include "net/URL.h"

namespace quillforth::app {

namespace {

// The most steps that an expression may take on one URL. Ordinary expressions need far fewer.
constexpr QLatin1String kWorkLimit("(*LIMIT_MATCH=50000)");

struct Kind {
  QLatin1String name;
  QLatin1String typePrefix;  // of MIME types that belong to it; may be empty
  QLatin1String extensions;  // that belong to it whatever the table says
};

constexpr Kind kKinds[] = {
    {QLatin1String("pictures"), QLatin1String("image/"),
     QLatin1String("jpg jpeg jpe png gif webp avif jxl svg bmp tif tiff heic heif psd xcf")},
    {QLatin1String("sound"), QLatin1String("audio/"),
     QLatin1String("mp3 ogg oga opus flac wav aac m4a wma aif aiff mid midi")},
    {QLatin1String("film"), QLatin1String("video/"),
     QLatin1String("mp4 m4v mkv webm avi mov mpg mpeg ogv wmv flv 3gp")},
    {QLatin1String("archives"),
     {},
     QLatin1String("zip tar gz tgz bz2 tbz tbz2 xz txz zst lz lzma 7z rar cab iso jar deb rpm")},
    {QLatin1String("documents"),
     {},
     QLatin1String("pdf ps djvu epub mobi doc docx odt rtf xls xlsx ods csv ppt pptx odp txt md tex")},
    {QLatin1String("pages"), QLatin1String("text/html"),
     QLatin1String("htm html shtml xhtml xht php php3 php5 phtml asp aspx jsp cgi")},
};

// In lower case, without its dot; empty when there is none. `url` need not be a valid URL.
QString ExtensionOf(const QString& url) {
  const auto end = std::find_if(url.begin(), url.end(), [](QChar c) { return c == u'?' || c == u'#'; });
  const QStringView whole(url.begin(), end);
  const qsizetype authority = whole.indexOf(u"://");
  const qsizetype slash = whole.lastIndexOf(u'/');
  if (authority >= 0 && slash < authority + 3) return {};  // only a host
  const QStringView name = whole.sliced(slash + 1);
  const qsizetype dot = name.lastIndexOf(u'.');
  return dot <= 0 ? QString() : name.sliced(dot + 1).toString().toLower();
}

QByteArray TypeOf(const QString& extension, const classify::CExtensionMap& extensions) {
  const QByteArray key = '.' + extension.toUtf8();
  const platform::ICMapEntry* record =
      extensions.find({key.constData(), static_cast<std::size_t>(key.size())});
  if (record == nullptr) return {};
  const std::string_view type = platform::PascalStringView(record->MIMEType);
  return {type.data(), static_cast<qsizetype>(type.size())};
}

const QHash<QString, LinkKinds>& KindsOfExtensions() {
  static const QHash<QString, LinkKinds> kinds = [] {
    QHash<QString, LinkKinds> all;
    for (std::size_t i = 0; i < std::size(kKinds); ++i) {
      for (const QString& extension : QString(kKinds[i].extensions).split(u' ', Qt::SkipEmptyParts))
        all[extension] |= 1U << i;
    }
    return all;
  }();
  return kinds;
}

LinkKinds KindsOf(const QString& extension, const classify::CExtensionMap& extensions) {
  constexpr LinkKinds kPages = 1U << (std::size(kKinds) - 1);  // the last one
  if (extension.isEmpty()) return kPages;
  const QByteArray type = TypeOf(extension, extensions);
  LinkKinds kinds = KindsOfExtensions().value(extension);
  for (std::size_t i = 0; i < std::size(kKinds); ++i) {
    const QLatin1String prefix = kKinds[i].typePrefix;
    if (!prefix.isEmpty() && type.startsWith(prefix.data())) kinds |= 1U << i;
  }
  return kinds;
}

bool MakeExpressions(const QStringList& patterns, std::vector<QRegularExpression>& expressions,
                     QString& error) {
  for (const QString& pattern : patterns) {
    const QRegularExpression& expression = expressions.emplace_back(kWorkLimit + pattern);
    if (expression.isValid()) continue;
    error = QStringLiteral("\"%1\" is no regular expression: %2").arg(pattern, expression.errorString());
    return false;
  }
  return true;
}

// Whether one of the expressions is found.
LinkFilter::Verdict Find(const std::vector<QRegularExpression>& expressions, const QString& url) {
  LinkFilter::Verdict verdict = LinkFilter::Verdict::no;
  for (const QRegularExpression& expression : expressions) {
    const QRegularExpressionMatch match = expression.match(url);
    if (!match.isValid()) verdict = LinkFilter::Verdict::tooMuchWork;
    if (match.hasMatch()) return LinkFilter::Verdict::yes;
  }
  return verdict;
}

}  // namespace

const QStringList& LinkFilter::kinds() {
  static const QStringList names = [] {
    QStringList all;
    for (const Kind& kind : kKinds) all.append(kind.name);
    return all;
  }();
  return names;
}

LinkKinds LinkFilter::kindsOf(const QString& url, const classify::CExtensionMap& extensions) {
  return KindsOf(ExtensionOf(url), extensions);
}

LinkFilter::Items::Items(const QStringList& words) {
  for (const QString& item : words) {
    QString word = item.trimmed().toLower();
    if (word.startsWith(u'.')) word.remove(0, 1);
    const qsizetype kind = LinkFilter::kinds().indexOf(word);
    if (kind >= 0) {
      kinds |= 1U << kind;
    } else if (!word.isEmpty()) {
      extensions.append(word);
    }
  }
}

std::optional<LinkFilter> LinkFilter::make(const Rules& rules, QString& error) {
  LinkFilter filter;
  filter.accept_ = Items(rules.accept);
  filter.reject_ = Items(rules.reject);
  filter.sameHost_ = rules.sameHost;
  if (!MakeExpressions(rules.match, filter.match_, error)) return std::nullopt;
  if (!MakeExpressions(rules.noMatch, filter.noMatch_, error)) return std::nullopt;
  return filter;
}

bool LinkFilter::isEmpty() const {
  return accept_.isEmpty() && reject_.isEmpty() && match_.empty() && noMatch_.empty() && !sameHost_;
}

QStringList LinkFilter::unknownWords(const classify::CExtensionMap& extensions) const {
  QStringList unknown;
  for (const QString& word : accept_.extensions + reject_.extensions) {
    if (!KindsOfExtensions().contains(word) && TypeOf(word, extensions).isEmpty()) unknown.append(word);
  }
  return unknown;
}

LinkFilter::Verdict LinkFilter::passes(const FoundLink& link,
                                       const classify::CExtensionMap& extensions) const {
  if (!accept_.isEmpty() || !reject_.isEmpty()) {
    const QString extension = ExtensionOf(link.url);
    const LinkKinds kinds = KindsOf(extension, extensions);
    const auto isIn = [&](const Items& items) {
      return (items.kinds & kinds) != 0 || items.extensions.contains(extension);
    };
    if (!accept_.isEmpty() && !isIn(accept_)) return Verdict::no;
    if (isIn(reject_)) return Verdict::no;
  }
  if (sameHost_) {
    const QString host = platform::HostOf(link.url);
    const bool isOfPage = host == platform::HostOf(link.page) || host == platform::HostOf(link.askedPage);
    if (host.isEmpty() || !isOfPage) return Verdict::no;
  }
  const Verdict match = match_.empty() ? Verdict::yes : Find(match_, link.url);
  const Verdict noMatch = match == Verdict::no ? Verdict::no : Find(noMatch_, link.url);
  if (match == Verdict::no || noMatch == Verdict::yes) return Verdict::no;
  return noMatch == Verdict::no ? match : noMatch;
}

}  // namespace quillforth::app
