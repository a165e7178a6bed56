// SPDX-License-Identifier: MIT

#include "desktop/WidgetOutlets.h"

#include <QSizePolicy>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/ShownText.h"

namespace quillforth::desktop {

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
