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
  if (entry.base == nullptr) return FromUTF8(entry.bytes);
  common::BoundedText url;
  entry.base->resolve(entry.bytes, url);
  return FromUTF8(url.view());
}

void UrlQueue::append(const QString& url) {
  if (url.isValidUtf16()) {
    append(nullptr, url.toStdString(), Encoding::utf8);
  } else {
    const auto* const units = reinterpret_cast<const char*>(url.constData());
    append(nullptr, {units, static_cast<std::size_t>(url.size()) * sizeof(QChar)}, Encoding::utf16);
  }
}

void UrlQueue::append(const linkextract::LinkEntry& link) {
  append(link.base(), std::string(link.key()), Encoding::utf8);
}

void UrlQueue::append(UrlQueue urls) {
  for (; !urls.empty(); urls.entries_.pop_front()) {
    Entry& first = urls.entries_.front();
    append(std::move(first.base), std::move(first.bytes), first.encoding);
  }
}

void UrlQueue::append(linkextract::SharedBase base, std::string bytes, Encoding encoding) {
  entries_.push_back({std::move(base), std::move(bytes), encoding, nextIdentifier_++});
}

QString UrlQueue::takeFirst() {
  QString url = TextOf(entries_.front());
  entries_.pop_front();
  return url;
}

void UrlQueue::removeAt(std::span<const std::size_t> indexes) {
  std::size_t kept = 0;
  auto next = indexes.begin();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (next != indexes.end() && *next == i) {
      ++next;
      continue;
    }
    if (kept != i) entries_[kept] = std::move(entries_[i]);
    ++kept;
  }
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(kept), entries_.end());
}

}  // namespace quillforth::app
