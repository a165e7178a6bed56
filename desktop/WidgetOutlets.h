// SPDX-License-Identifier: MIT
//
// The controller's small outlets as Qt widgets.
//
// What the controller says is kept, and reaches the widget with the next frame; only what can no longer be
// pressed cannot at once. Hidden widgets keep their room, so that nothing jumps. Main thread; the widgets
// outlive these.
#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QBasicTimer>
#include <QLabel>
#include <QProgressBar>
#include <QWidget>
#include <functional>

#include "app/Outlets.h"
#include "desktop/FramePacer.h"

namespace quillforth::desktop {

/// A small indicator that turns while there is work.
///
/// While it stands still or cannot be seen, it has no timer and paints nothing.
class Spinner final : public QWidget {
  Q_OBJECT

 public:
  explicit Spinner(QWidget* parent = nullptr);

  void setAnimated(bool isAnimated);
  [[nodiscard]] bool isAnimated() const { return isAnimated_; }
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void showEvent(QShowEvent* /*event*/) override { followVisibility(); }
  void hideEvent(QHideEvent* /*event*/) override { followVisibility(); }

 private:
  void followVisibility();

  QBasicTimer timer_;
  int step_ = 0;
  bool isAnimated_ = false;
};

/// A line of text that fits the room it has: what is too long loses its middle, and stands whole in the tool
/// tip.
class ElidedLabel final : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  /// A text of any length; shown literally.
  void setWholeText(const QString& text);
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// Keeps the room of `widget` in its layout while it is hidden.
void RetainSizeWhenHidden(QWidget& widget);

/// A text that is only shown.
class LabelOutlet final : public app::TextField {
 public:
  /// `wasShown` is called whenever the label has been brought up to date.
  LabelOutlet(
      FramePacer& pacer, QLabel& label, std::function<void()> wasShown = [] {});
  [[nodiscard]] QString stringValue() const override { return text_; }
  void setStringValue(const QString& text) override;
  void setHidden(bool hidden) override;

 private:
  void show();

  QLabel& label_;
  QString text_;
  bool isHidden_;
  std::function<void()> wasShown_;
  FramePacer::Update update_;
};

class ButtonOutlet final : public app::Button {
 public:
  /// `keyboardHeir`: has the keyboard after a button that cannot be pressed any more. `action`: the menu's
  /// way to the same command, to be had whenever the button is; null: always.
  ButtonOutlet(FramePacer& pacer, QAbstractButton& button, QWidget& keyboardHeir, QAction* action = nullptr);
  void setEnabled(bool enabled) override;
  void setHidden(bool hidden) override;
  void setToolTip(const QString& text) override;

 private:
  void show();

  QAbstractButton& button_;
  QWidget& keyboardHeir_;
  QAction* action_;
  bool isEnabled_;
  bool isHidden_;
  FramePacer::Update update_;
};

class ProgressBarOutlet final : public app::ProgressIndicator {
 public:
  ProgressBarOutlet(FramePacer& pacer, QProgressBar& bar);
  void setDoubleValue(double value) override;
  void setHidden(bool hidden) override;
  void startAnimation() override {}
  void stopAnimation() override {}

 private:
  void show();

  QProgressBar& bar_;
  double value_ = 0;
  bool isHidden_;
  FramePacer::Update update_;
};

class SpinnerOutlet final : public app::ProgressIndicator {
 public:
  SpinnerOutlet(FramePacer& pacer, Spinner& spinner);
  void setDoubleValue(double /*value*/) override {}
  void setHidden(bool hidden) override { spinner_.setHidden(hidden); }
  void startAnimation() override { setAnimated(true); }
  void stopAnimation() override { setAnimated(false); }
  [[nodiscard]] bool isAnimated() const { return isAnimated_; }

 private:
  void setAnimated(bool isAnimated);

  Spinner& spinner_;
  bool isAnimated_ = false;
  FramePacer::Update update_;
};

}  // namespace quillforth::desktop
