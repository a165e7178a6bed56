// SPDX-License-Identifier: MIT
//
// The URLs that wait, first in, first out.
//
// Entries are kept exactly as they came; nothing is merged. They are kept as bytes, which for nearly all URLs
// take half the memory of the text. A page's links are kept as they stand in the page, and share their base
// and page. So even millions of links under a long base take memory in proportion to the page. Taking the
// head, reading a row and appending are constant time, removing any set of rows is one pass. Main thread
// only, except a queue that is still being made.
#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>

#include "linkextract/LinkTable.h"

namespace quillforth::app {

class UrlQueue {
 public:
  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] bool empty() const { return entries_.empty(); }
  /// `index` < size().
  [[nodiscard]] QString at(std::size_t index) const { return TextOf(entries_[index]); }
  /// Unique for the queue's life, ascending from head to end. `index` < size().
  [[nodiscard]] std::uint64_t identifierAt(std::size_t index) const { return entries_[index].identifier; }

  struct Taken {
    QString url;
    QString page;  ///< URL of the page that it was found on; null: none
  };

  /// Any UTF-16, lone surrogates included. `page` as in Taken.
  void append(const QString& url, const QString& page = {});
  /// A link by its absolute URL, which is UTF-8.
  void append(const linkextract::LinkEntry& link, const QString& page);
  /// All of `urls`, in their order, under new identifiers.
  void append(UrlQueue urls);
  /// `index` < size().
  [[nodiscard]] Taken entryAt(std::size_t index) const;
  /// The queue is not empty.
  [[nodiscard]] Taken takeFirst();
  /// Removes these, and hands them over. `indexes`: ascending; those beyond the end are ignored.
  UrlQueue takeAt(std::span<const std::size_t> indexes);
  UrlQueue takeAll();

 private:
  enum class Encoding : std::uint8_t { utf8, utf16 };
  // What all links of a page have in common.
  struct Source {
    linkextract::SharedBase base;  // null: `bytes` are the URL, and not a link under a base
    QString page;
  };
  using SharedSource = std::shared_ptr<const Source>;
  struct Entry {
    SharedSource source;  // null: no base and no page
    std::string bytes;
    Encoding encoding;
    std::uint64_t identifier;
  };
  [[nodiscard]] static QString TextOf(const Entry& entry);
  [[nodiscard]] SharedSource sourceOf(const linkextract::SharedBase& base, const QString& page) const;
  void append(SharedSource source, std::string bytes, Encoding encoding);

  std::deque<Entry> entries_;
  std::uint64_t nextIdentifier_ = 0;
};

}  // namespace quillforth::app
