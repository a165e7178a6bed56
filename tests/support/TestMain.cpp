// SPDX-License-Identifier: MIT
//
// main() of every test program: one application object, so that events are delivered, and a home of its own,
// so that no test reads or writes what belongs to the person who runs it. Tests of windows compile this again
// with a QApplication.

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <csignal>
#ifdef QUILLFORTH_TEST_WINDOWS
#include <QApplication>
using Application = QApplication;
#else
using Application = QCoreApplication;
#endif

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  QTemporaryDir home;
  if (!home.isValid()) return 1;
  const QByteArray path = home.path().toLocal8Bit();
  qputenv("HOME", path);
  for (const char* name :
       {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "XDG_RUNTIME_DIR"}) {
    qunsetenv(name);
  }
  for (const char* name : {"http_proxy", "https_proxy", "ftp_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY",
                           "FTP_PROXY", "ALL_PROXY", "no_proxy", "NO_PROXY"}) {
    qunsetenv(name);
  }
  std::signal(SIGPIPE, SIG_IGN);
  const Application application(argc, argv);
  return RUN_ALL_TESTS();
}
