// SPDX-License-Identifier: MIT
//
// drag_source TEXT: a small window, at the right of the display, that TEXT can be dragged from. For each drag
// it says "taken" or "refused".

#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <iostream>

class DragSource final : public QLabel {
  void mousePressEvent(QMouseEvent* /*event*/) override {
    auto* drag = new QDrag(this);  // lives until the drop has fetched its data
    auto* dragged = new QMimeData;
    dragged->setText(text());
    drag->setMimeData(dragged);
    std::cout << (drag->exec(Qt::CopyAction) == Qt::IgnoreAction ? "refused" : "taken") << std::endl;
  }
};

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  DragSource source;
  source.setText(QApplication::arguments().value(1));
  source.setWindowFlag(Qt::BypassWindowManagerHint);
  source.setGeometry(1000, 0, 200, 200);
  source.show();
  return QApplication::exec();
}
