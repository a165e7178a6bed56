// SPDX-License-Identifier: MIT

#include "app/UrlQueue.h"

#include <QStringDecoder>
#include <cstring>
#include <utility>

namespace quillforth::app {

namespace {

// Unlike QString::fromUtf8, this keeps a byte-order mark.
QString FromUTF8(std::string_view text) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
  return decoder(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
}

// The memory of the text's UTF-16 units.
QString FromUTF16(const std::string& units) {
  QString text(static_cast<qsizetype>(units.size() / sizeof(QChar)), Qt::Uninitialized);
  std::memcpy(text.data(), units.data(), units.size());
  return text;
}

}  // namespace

QString UrlQueue::TextOf(const Entry& entry) {
  if (entry.encoding == Encoding::utf16) return FromUTF16(entry.bytes);
  if (!entry.source || !entry.source->base) return FromUTF8(entry.bytes);
  common::BoundedText url;
  entry.source->base->resolve(entry.bytes, url);
  return FromUTF8(url.view());
}

// The source of the last entry if it is the same, so that both share it.
UrlQueue::SharedSource UrlQueue::sourceOf(const linkextract::SharedBase& base, const QString& page) const {
  if (!base && page.isNull()) return nullptr;
  const SharedSource last = entries_.empty() ? nullptr : entries_.back().source;
  const bool isSame = last && last->base == base && last->page == page;
  return isSame ? last : std::make_shared<const Source>(Source{base, page});
}

void UrlQueue::append(const QString& url, const QString& page) {
  SharedSource source = sourceOf(nullptr, page);
  if (url.isValidUtf16()) {
    append(std::move(source), url.toStdString(), Encoding::utf8);
  } else {
    const auto* const units = reinterpret_cast<const char*>(url.constData());
    append(std::move(source), {units, static_cast<std::size_t>(url.size()) * sizeof(QChar)}, Encoding::utf16);
  }
}

void UrlQueue::append(const linkextract::LinkEntry& link, const QString& page) {
  append(sourceOf(link.base(), page), std::string(link.key()), Encoding::utf8);
}

void UrlQueue::append(UrlQueue urls) {
  for (; !urls.empty(); urls.entries_.pop_front()) {
    Entry& first = urls.entries_.front();
    append(std::move(first.source), std::move(first.bytes), first.encoding);
  }
}

void UrlQueue::append(SharedSource source, std::string bytes, Encoding encoding) {
  entries_.push_back({std::move(source), std::move(bytes), encoding, nextIdentifier_++});
}

UrlQueue::Taken UrlQueue::entryAt(std::size_t index) const {
  const Entry& entry = entries_[index];
  return {TextOf(entry), entry.source ? entry.source->page : QString()};
}

UrlQueue::Taken UrlQueue::takeFirst() {
  Taken taken = entryAt(0);
  entries_.pop_front();
  return taken;
}

UrlQueue UrlQueue::takeAll() {
  UrlQueue taken;
  taken.entries_.swap(entries_);
  return taken;
}

UrlQueue UrlQueue::takeAt(std::span<const std::size_t> indexes) {
  UrlQueue taken;
  std::size_t kept = 0;
  auto next = indexes.begin();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (next != indexes.end() && *next == i) {
      ++next;
      taken.entries_.push_back(std::move(entries_[i]));
      continue;
    }
    if (kept != i) entries_[kept] = std::move(entries_[i]);
    ++kept;
  }
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(kept), entries_.end());
  return taken;
}

}  // namespace quillforth::app
