// SPDX-License-Identifier: MIT
//
// Which links of a page join the queue: the functions that are asked between the scan of a page and the
// queue, and the rules that a user may give for it.
//
// Without rules every link joins. Pure values; any thread.
#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

#include "classify/ExtensionMap.h"

namespace quillforth::app {

class UrlQueue;

/// A link as the scan of a page has given it.
struct FoundLink {
  QString url;        ///< absolute; perhaps no valid URL
  QString page;       ///< where its page came from in the end, without credentials and fragment
  QString askedPage;  ///< the URL that was asked for, credentials included
};

/// Whether a link joins the queue. Called for the links of one page after another, in their order, on the
/// thread that calculates (`Calculate` in Host.h).
using LinkChoice = std::function<bool(const FoundLink& link)>;

/// Takes out of `links`, which are all of one page and in their order, those that are not to join the queue.
/// Called after `LinkChoice`, once for each page that has links left. Main thread; may run its event loop.
using PageChoice = std::function<void(UrlQueue& links)>;

/// A set of kinds of links: one bit each, by its place in `LinkFilter::kinds()`.
using LinkKinds = unsigned;

class LinkFilter {
 public:
  /// Each item of `accept` and `reject` is a file-name extension, with or without its dot, in any letter
  /// case, or a kind: "pictures", "sound", "film", "archives", "documents" or "pages". Pages are also the
  /// links without any extension.
  struct Rules {
    QStringList accept;   ///< empty: everything
    QStringList reject;   ///< what is in both is rejected
    QStringList match;    ///< expressions of PCRE2; one of them is found in the URL. Empty: every URL
    QStringList noMatch;  ///< none of these is found in it
    bool sameHost = false;
  };

  /// The names of all kinds, in the order of their table.
  [[nodiscard]] static const QStringList& kinds();
  /// Those that `url` belongs to, which need be no valid URL.
  [[nodiscard]] static LinkKinds kindsOf(const QString& url, const classify::CExtensionMap& extensions);

  /// Lets every link pass.
  LinkFilter() = default;
  /// Nothing when an expression is not valid. Then `error` says why, for people.
  [[nodiscard]] static std::optional<LinkFilter> make(const Rules& rules, QString& error);

  enum class Verdict { no, yes, tooMuchWork };
  /// The work of an expression on a URL is bounded. `tooMuchWork`: the bound was reached before it was clear.
  [[nodiscard]] Verdict passes(const FoundLink& link, const classify::CExtensionMap& extensions) const;
  /// What of `accept` and `reject` is neither a kind nor an extension that is known.
  [[nodiscard]] QStringList unknownWords(const classify::CExtensionMap& extensions) const;
  [[nodiscard]] bool isEmpty() const;

 private:
  using Expressions = std::vector<QRegularExpression>;
  struct Items {
    LinkKinds kinds = 0;
    QStringList extensions = {};

    explicit Items(const QStringList& words = {});
    [[nodiscard]] bool isEmpty() const { return kinds == 0 && extensions.isEmpty(); }
  };

  Items accept_;
  Items reject_;
  Expressions match_;
  Expressions noMatch_;
  bool sameHost_ = false;
};

}  // namespace quillforth::app
