// SPDX-License-Identifier: MIT
//
// A line of text that fits the room it has: what is too long loses its middle, and stands whole in the tool
// tip.
#pragma once

#include <QLabel>

namespace quillforth::desktop {

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

}  // namespace quillforth::desktop
