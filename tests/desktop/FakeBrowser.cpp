// SPDX-License-Identifier: MIT
//
// firefox ADDRESS: a window with an address that Ctrl+L selects and Ctrl+C copies, but no document that says
// it.

#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QShortcut>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QMainWindow window;
  window.setWindowTitle(QStringLiteral("Page"));
  auto* address = new QLineEdit(QApplication::arguments().value(1));
  window.setCentralWidget(address);
  const QShortcut select(QKeySequence(Qt::CTRL | Qt::Key_L), &window);
  QObject::connect(&select, &QShortcut::activated, address, &QLineEdit::selectAll);
  window.show();
  return QApplication::exec();
}
