// SPDX-License-Identifier: MIT

#include "linkextract/ResolveLink.h"

#include <algorithm>
#include <utility>

#include "common/ScratchMemory.h"

namespace quillforth::linkextract {

using Pool = common::RecordPool<TextList::Record>;

void TextList::append(std::string_view text) {
  Record* record = Pool::take();
  record->text.assign(text);
  (head_ == nullptr ? head_ : tail_->next) = record;
  tail_ = record;
  ++count_;
}

bool TextList::contains(std::string_view text) const {
  const common::BoundedText wanted(text);
  for (const Record* record = head_; record != nullptr; record = record->next) {
    if (record->text == wanted) return true;
  }
  return false;
}

bool TextList::addIfAbsent(std::string_view text) {
  if (contains(text)) return false;
  append(text);
  return true;
}

void TextList::clear() {
  if (head_ != nullptr) Pool::release(head_, tail_);
  head_ = tail_ = nullptr;
  count_ = 0;
}

void TextList::swap(TextList& other) noexcept {
  std::swap(head_, other.head_);
  std::swap(tail_, other.tail_);
  std::swap(count_, other.count_);
}

namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// `text` up to its last `mark`, or all of it.
std::string_view CutAtLast(std::string_view text, char mark) {
  return text.substr(0, text.rfind(mark));
}

UrlScheme SchemeOf(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(':'), text.size()));
  const std::string_view name = text.substr(0, text.find(':'));
  if (name == "ftp") return UrlScheme::ftp;
  return name == "https" ? UrlScheme::https : UrlScheme::http;
}

std::string_view HostOf(std::string_view text) {
  const std::size_t colon = text.find("://");
  if (colon == kNone) return {};
  const std::string_view rest = text.substr(colon + 3);
  return rest.substr(0, rest.find('/'));
}

std::string_view DirectoryOf(std::string_view text) {
  const std::size_t colon = text.find("://");
  const std::size_t first = text.find('/', colon == kNone ? 0 : colon + 3);
  if (first == kNone) return {};
  const std::size_t question = text.rfind('?');
  if (question != kNone && question > first) text = text.substr(0, question);
  // These two marks are looked for in the whole text, also before the first "/".
  text = CutAtLast(CutAtLast(text, '#'), '$');
  const std::size_t last = text.rfind('/');
  if (last == kNone || last <= first + 1) return {};
  return text.substr(first + 1, last - first - 1);
}

void AppendSegments(std::string_view directory, TextList& segments) {
  while (!directory.empty()) {
    const std::string_view piece = directory.substr(0, directory.find('/'));
    if (!piece.empty()) segments.append(piece);
    directory.remove_prefix(std::min(piece.size() + 1, directory.size()));
  }
}

/// After the last `mark`, up to the last `other` and the last `another` where these stand after it.
std::string_view PartAfter(std::string_view text, char mark, char other, char another) {
  const std::size_t start = text.rfind(mark);
  if (start == kNone) return {};
  std::size_t end = text.size();
  for (const std::size_t stop : {text.rfind(other), text.rfind(another)}) {
    if (stop != kNone && stop > start) end = std::min(end, stop);
  }
  return text.substr(start + 1, end - start - 1);
}

void SplitFileName(std::string_view text, ParsedURL& parts) {
  // Both marks are found before either cuts the text: "a?b$c?d" keeps "a?b".
  const std::string_view bare = text.substr(0, std::min(text.rfind('$'), text.rfind('?')));
  const std::size_t hash = bare.rfind('#');
  const std::string_view path = bare.substr(0, hash);
  const std::size_t first = path.find('/');
  const std::size_t last = path.rfind('/');
  // The second "/" of "//" is not one that a file name follows.
  if (last == kNone || (last > 0 && last == first + 1)) return;
  const std::string_view name = path.substr(last + 1);
  parts.fileName.assign(name);
  if (const std::size_t dot = name.rfind('.'); dot != kNone) parts.extension.assign(name.substr(dot));
  parts.fileNameWithQuery.assign(text.substr(0, hash).substr(last + 1));
}

}  // namespace

ParsedURL::ParsedURL(const common::BoundedText& text, const classify::CExtensionMap* extensions) {
  if (text.empty()) return;
  url.assign(CutAtLast(text.view(), '#'));
  const std::string_view all = url.view();
  scheme = SchemeOf(all);
  host.assign(HostOf(all));
  directory.assign(DirectoryOf(all));
  AppendSegments(directory.view(), segments);
  SplitFileName(all, *this);
  dollarPart.assign(PartAfter(all, '$', '?', '#'));
  query.assign(PartAfter(all, '?', '$', '#'));
  fragment.assign(PartAfter(all, '#', '$', '?'));
  if (extension.empty() || extensions == nullptr) return;
  if (const platform::ICMapEntry* const record = extensions->find(extension.view())) {
    fileType = record->fileType;
    creator = record->fileCreator;
  }
}

namespace {

using common::BoundedText;

constexpr std::string_view kUp = "../";

std::size_t CountOf(std::string_view text, std::string_view wanted) {
  std::size_t count = 0;
  std::size_t found = text.find(wanted);
  for (; found != std::string_view::npos; found = text.find(wanted, found + wanted.size())) ++count;
  return count;
}

void Join(std::string_view prefix, std::string_view rest, BoundedText& joined) {
  joined.assign(prefix);
  joined.append(rest);
}

}  // namespace

LinkResolver::LinkResolver(const BoundedText& base) {
  const ParsedURL parts(base);
  Join("http://", parts.host.view(), site_);
  folder_ = site_;
  folder_.append("/");
  trail_ = folder_;
  if (!parts.directory.empty()) {
    folder_.append(parts.directory.view());
    folder_.append("/");
  }
  trailEnds_.push_back(static_cast<std::uint8_t>(trail_.size()));
  for (const TextList::Record* segment = parts.segments.first(); segment != nullptr;
       segment = segment->next) {
    trail_.append(segment->text.view());
    trail_.append("/");
    trailEnds_.push_back(static_cast<std::uint8_t>(trail_.size()));
  }
}

void LinkResolver::resolve(std::string_view link, BoundedText& absolute) const {
  link = link.substr(0, BoundedText::kMaxLength);
  if (link.starts_with("//")) {
    Join("http:", link, absolute);
    return;
  }
  if (link.starts_with("./")) link.remove_prefix(2);
  if (link.find("://") != std::string_view::npos) {
    absolute.assign(link);
  } else if (link.starts_with('/')) {
    Join(site_.view(), link, absolute);
  } else if (link.starts_with(kUp)) {
    climb(link, absolute);
  } else {
    Join(folder_.view(), link, absolute);
  }
}

void LinkResolver::climb(std::string_view link, BoundedText& absolute) const {
  const std::size_t levels = CountOf(link, kUp);
  const std::size_t segments = trailEnds_.size() - 1;
  const std::size_t kept = segments > levels ? segments - levels : 0;
  Join(trail_.view().substr(0, trailEnds_[kept]), link.substr(kUp.size() * levels), absolute);
}

BoundedText ResolveLink(const BoundedText& base, const BoundedText& link) {
  BoundedText absolute;
  LinkResolver(base).resolve(link.view(), absolute);
  return absolute;
}

}  // namespace quillforth::linkextract
