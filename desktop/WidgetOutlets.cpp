// SPDX-License-Identifier: MIT

#include "desktop/WidgetOutlets.h"

#include <QPainter>
#include <QSizePolicy>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/ShownText.h"
#include "net/URL.h"

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
  setToolTip(ToolTipText(platform::WithoutPassword(text)));
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
      fontMetrics().elidedText(ShownText(platform::WithoutPassword(text()), kLongestMeasured),
                               Qt::ElideMiddle, contentsRect().width());
  style()->drawItemText(&painter, contentsRect(), static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft),
                        palette(), isEnabled(), shown, foregroundRole());
}

void RetainSizeWhenHidden(QWidget& widget) {
  QSizePolicy policy = widget.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget.setSizePolicy(policy);
}

LabelOutlet::LabelOutlet(FramePacer& pacer, QLabel& label, std::function<void()> wasShown)
    : label_(label),
      text_(label.text()),
      isHidden_(label.isHidden()),
      wasShown_(std::move(wasShown)),
      update_(pacer, [this] { show(); }) {
  RetainSizeWhenHidden(label);
}

void LabelOutlet::setStringValue(const QString& text) {
  text_ = text;
  update_.request();
}

void LabelOutlet::setHidden(bool hidden) {
  isHidden_ = hidden;
  update_.request();
}

void LabelOutlet::show() {
  if (auto* elided = qobject_cast<ElidedLabel*>(&label_)) {
    elided->setWholeText(text_);
  } else if (label_.text() != text_) {
    label_.setText(text_);
  }
  label_.setHidden(isHidden_);
  wasShown_();
}

ButtonOutlet::ButtonOutlet(FramePacer& pacer, QAbstractButton& button, QWidget& keyboardHeir, QAction* action)
    : button_(button),
      keyboardHeir_(keyboardHeir),
      action_(action),
      isEnabled_(button.isEnabled()),
      isHidden_(button.isHidden()),
      update_(pacer, [this] { show(); }) {
  RetainSizeWhenHidden(button);
  show();
}

void ButtonOutlet::setEnabled(bool enabled) {
  isEnabled_ = enabled;
  update_.request();
  if (!enabled) update_.flush();
}

void ButtonOutlet::setHidden(bool hidden) {
  isHidden_ = hidden;
  update_.request();
}

void ButtonOutlet::setToolTip(const QString& text) {
  button_.setToolTip(ToolTipText(text));
  button_.setAccessibleDescription(text);  // the tool tip is markup
}

// Left to the toolkit, the keyboard would go to the next button, and the key that pressed this one would
// press that.
void ButtonOutlet::show() {
  const bool isThere = isEnabled_ && !isHidden_;
  if (!isThere && button_.window()->focusWidget() == &button_) keyboardHeir_.setFocus();
  button_.setEnabled(isEnabled_);
  button_.setHidden(isHidden_);
  if (action_ != nullptr) action_->setEnabled(isThere);
}

ProgressBarOutlet::ProgressBarOutlet(FramePacer& pacer, QProgressBar& bar)
    : bar_(bar), isHidden_(bar.isHidden()), update_(pacer, [this] { show(); }) {
  RetainSizeWhenHidden(bar);
}

void ProgressBarOutlet::setDoubleValue(double value) {
  value_ = value;
  update_.request();
}

void ProgressBarOutlet::setHidden(bool hidden) {
  isHidden_ = hidden;
  update_.request();
}

void ProgressBarOutlet::show() {
  const double fraction = std::isnan(value_) ? 0.0 : std::clamp(value_, 0.0, 1.0);
  bar_.setValue(bar_.minimum() + static_cast<int>(fraction * (bar_.maximum() - bar_.minimum())));
  bar_.setHidden(isHidden_);
}

SpinnerOutlet::SpinnerOutlet(FramePacer& pacer, Spinner& spinner)
    : spinner_(spinner), update_(pacer, [this] { spinner_.setAnimated(isAnimated_); }) {}

void SpinnerOutlet::setAnimated(bool isAnimated) {
  isAnimated_ = isAnimated;
  update_.request();
}

}  // namespace quillforth::desktop
