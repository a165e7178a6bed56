// SPDX-License-Identifier: MIT
//
// quillforth: chooses the host, and shows the controller in windows.

#include <QApplication>
#include <QMainWindow>

#include "ui_StatusWindow.h"

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QMainWindow window;
  Ui::StatusWindow contents;
  contents.setupUi(&window);
  window.show();
  return QApplication::exec();
}
