// SPDX-License-Identifier: MIT
//
// A small indicator that turns while there is work.
//
// While it stands still or cannot be seen, it has no timer and paints nothing.
#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace quillforth::desktop {

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
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void followVisibility();

  QBasicTimer timer_;
  int step_ = 0;
  bool isAnimated_ = false;
};

}  // namespace quillforth::desktop
