// SPDX-License-Identifier: MIT
//
// Which URLs of a list are shown: those that hold a text, and are of certain kinds. Main thread.
#pragma once

#include <QPushButton>
#include <QString>

#include "app/LinkFilter.h"

namespace quillforth::desktop {

struct ListFilter {
  QString text = {};                                    ///< whatever the case; empty: any URL
  app::LinkKinds kinds = 0;                             ///< 0: all
  const classify::CExtensionMap* extensions = nullptr;  ///< not null where there are kinds; outlives this

  [[nodiscard]] bool isEmpty() const { return text.isEmpty() && kinds == 0; }
  [[nodiscard]] bool shows(const QString& url) const;
  [[nodiscard]] bool operator==(const ListFilter&) const = default;
};

/// A button with a menu of kinds. None that is checked means all.
class KindsButton final : public QPushButton {
  Q_OBJECT

 public:
  explicit KindsButton(QWidget* parent = nullptr);
  [[nodiscard]] app::LinkKinds kinds() const;
  void clear();

 signals:
  void kindsDidChange();

 private:
  void showKinds();
};

}  // namespace quillforth::desktop
