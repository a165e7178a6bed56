// SPDX-License-Identifier: MIT

#include "desktop/ListFilter.h"

#include <QMenu>
#include <algorithm>

namespace quillforth::desktop {

bool ListFilter::shows(const QString& url) const {
  if (!url.contains(text, Qt::CaseInsensitive)) return false;
  return kinds == 0 || (app::LinkFilter::kindsOf(url, *extensions) & kinds) != 0;
}

KindsButton::KindsButton(QWidget* parent) : QPushButton(parent) {
  setAutoDefault(false);
  setAccessibleDescription(tr("Kinds of URLs that are shown"));
  setMenu(new QMenu(this));
  int width = 0;
  // In the order of LinkFilter::kinds.
  for (const QString& name :
       {tr("&Pictures"), tr("&Sound"), tr("&Film"), tr("&Archives"), tr("&Documents"), tr("Pa&ges")}) {
    QAction* action = menu()->addAction(name);
    action->setCheckable(true);
    connect(action, &QAction::toggled, this, [this] {
      showKinds();
      emit kindsDidChange();
    });
    setText(action->iconText());
    width = std::max(width, sizeHint().width());
  }
  showKinds();
  setMinimumWidth(std::max(width, sizeHint().width()));  // it does not jump
}

app::LinkKinds KindsButton::kinds() const {
  app::LinkKinds kinds = 0;
  const QList<QAction*> actions = menu()->actions();
  for (qsizetype i = 0; i < actions.size(); ++i) {
    if (actions[i]->isChecked()) kinds |= 1U << i;
  }
  return kinds;
}

void KindsButton::clear() {
  for (QAction* action : menu()->actions()) action->setChecked(false);
}

void KindsButton::showKinds() {
  QStringList names;
  for (const QAction* action : menu()->actions()) {
    if (action->isChecked()) names.append(action->iconText());
  }
  setText(names.isEmpty()     ? tr("All Kinds")
          : names.size() == 1 ? names.constFirst()
                              : tr("%1 Kinds").arg(names.size()));
  setToolTip(names.join(QStringLiteral(", ")));
}

}  // namespace quillforth::desktop
