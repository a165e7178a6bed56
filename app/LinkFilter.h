// SPDX-License-Identifier: MIT
//
// Which links of a page join the queue: the function that is asked between the scan of a page and the queue,
// and the rules that a user may give for it.
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

/// A link as the scan of a page has given it.
struct FoundLink {
  QString url;        ///< absolute; perhaps no valid URL
  QString page;       ///< where its page came from in the end, without credentials and fragment
  QString askedPage;  ///< the URL that was asked for, credentials included
};

/// Whether a link joins the queue. Called for the links of one page after another, in their order, on the
/// thread that calculates (`Calculate` in Host.h).
using LinkChoice = std::function<bool(const FoundLink& link)>;

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

  /// Lets every link pass.
  LinkFilter() = default;
  /// Nothing when an expression is not valid. Then `error` says why, for people.
  [[nodiscard]] static std::optional<LinkFilter> make(const Rules& rules, QString& error);

  /// The work of an expression on a URL is bounded; a link on which it takes longer does not pass.
  [[nodiscard]] bool passes(const FoundLink& link, const classify::CExtensionMap& extensions) const;
  [[nodiscard]] bool isEmpty() const;

 private:
  using Expressions = std::vector<QRegularExpression>;

  QStringList accept_;
  QStringList reject_;
  Expressions match_;
  Expressions noMatch_;
  bool sameHost_ = false;
};

}  // namespace quillforth::app
