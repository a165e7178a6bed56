// SPDX-License-Identifier: MIT

#include "linkextract/ResolveLink.h"

#include "linkextract/ParsedURL.h"

namespace quillforth::linkextract {

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
