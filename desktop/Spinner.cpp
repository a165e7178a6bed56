// SPDX-License-Identifier: MIT

#include "desktop/Spinner.h"

#include <QPainter>
#include <algorithm>

namespace quillforth::desktop {

namespace {

constexpr int kSpokes = 12;
constexpr int kStepMilliseconds = 80;

}  // namespace

Spinner::Spinner(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Spinner::setAnimated(bool isAnimated) {
  if (isAnimated_ == isAnimated) return;
  isAnimated_ = isAnimated;
  followVisibility();
  update();
}

QSize Spinner::sizeHint() const {
  const int side = fontMetrics().height();
  return {side, side};
}

void Spinner::followVisibility() {
  if (isAnimated_ && isVisible()) {
    timer_.start(kStepMilliseconds, this);
  } else {
    timer_.stop();
  }
}

void Spinner::showEvent(QShowEvent* /*event*/) {
  followVisibility();
}

void Spinner::hideEvent(QHideEvent* /*event*/) {
  followVisibility();
}

void Spinner::timerEvent(QTimerEvent* /*event*/) {
  step_ = (step_ + 1) % kSpokes;
  update();
}

void Spinner::paintEvent(QPaintEvent* /*event*/) {
  if (!isAnimated_) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double radius = std::min(width(), height()) / 2.0;
  painter.translate(width() / 2.0, height() / 2.0);
  painter.rotate(360.0 / kSpokes * step_);
  for (int spoke = 0; spoke < kSpokes; ++spoke) {
    QColor colour = palette().color(QPalette::WindowText);
    colour.setAlphaF(static_cast<float>(spoke + 1) / kSpokes);
    painter.setPen(QPen(colour, radius / 5, Qt::SolidLine, Qt::RoundCap));
    painter.rotate(360.0 / kSpokes);
    painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius * 0.85));
  }
}

}  // namespace quillforth::desktop
