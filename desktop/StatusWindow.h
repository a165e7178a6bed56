// SPDX-License-Identifier: MIT
//
// The main window: the queue, what came of it, the progress area, and every command in its menu bar.
//
// It knows no controller. What it is asked and what happens to it goes to its owner. Main thread.
#pragma once

#include <QMainWindow>
#include <QMimeData>
#include <memory>

#include "desktop/QueueTable.h"

namespace Ui {
class StatusWindow;
}

namespace quillforth::desktop {

class StatusWindowOwner {
 public:
  virtual ~StatusWindowOwner() = default;
  /// Whether what is dragged, or stands in the clipboard, may be dropped here.
  [[nodiscard]] virtual bool mayDrop(const QMimeData& data) = 0;
  virtual void drop(const QMimeData& data) = 0;
  virtual void windowDidBecomeKey() = 0;
  /// False keeps the window open.
  [[nodiscard]] virtual bool windowShouldClose() = 0;
};

class StatusWindow final : public QMainWindow {
  Q_OBJECT

 public:
  /// `owner` outlives the window.
  explicit StatusWindow(StatusWindowOwner& owner);
  ~StatusWindow() override;

  [[nodiscard]] Ui::StatusWindow& ui() { return *ui_; }
  /// The one that is shown.
  [[nodiscard]] QueueTable& table() const;
  /// Of the queue.
  [[nodiscard]] bool isFiltered() const;

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  /// The second press of a double click is none: what it would hit came under the pointer with the first.
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void answer(QDragMoveEvent& event) const;
  /// Whether the event of the row for the filter goes no further.
  bool endFilter(QEvent& event);

  StatusWindowOwner& owner_;
  std::unique_ptr<Ui::StatusWindow> ui_;
  bool isDropWelcome_ = false;  // what is being dragged over the window
};

}  // namespace quillforth::desktop
