// SPDX-License-Identifier: MIT

#include "desktop/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

#include "desktop/ShownText.h"

namespace quillforth::desktop {

namespace {

// Wider than any window: measuring more would only cost time.
constexpr qsizetype kLongestMeasured = 2000;
constexpr int kPreferredCharacters = 40;
constexpr int kFewestCharacters = 8;

}  // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ElidedLabel::setWholeText(const QString& text) {
  if (text == this->text()) return;
  setText(text);
  setToolTip(ToolTipText(text));
}

QSize ElidedLabel::sizeHint() const {
  return {fontMetrics().averageCharWidth() * kPreferredCharacters, fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const {
  return {fontMetrics().averageCharWidth() * kFewestCharacters, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  const QString shown =
      fontMetrics().elidedText(ShownText(text(), kLongestMeasured), Qt::ElideMiddle, contentsRect().width());
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft),
                        palette(), isEnabled(), shown, foregroundRole());
}

}  // namespace quillforth::desktop
