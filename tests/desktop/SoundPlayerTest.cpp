// SPDX-License-Identifier: MIT

#include "desktop/SoundPlayer.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "tests/support/RunLoop.h"

namespace quillforth::tests {

TEST(SoundPlayer, WhatIsPlayedReachesTheSoundServer) {
  for (const char* program : {"pulseaudio", "parec"}) {
    if (QStandardPaths::findExecutable(program).isEmpty()) GTEST_SKIP() << "there is no " << program;
  }
  const QTemporaryDir folder;
  const QString socket = folder.filePath("socket");
  qputenv("PULSE_SERVER", "unix:" + socket.toUtf8());
  QProcess server, microphone;
  server.start("pulseaudio", {"-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "-L",
                              "module-null-sink rate=44100 channels=1 channel_map=mono sink_name=heard", "-L",
                              "module-native-protocol-unix auth-anonymous=1 socket=" + socket});
  ASSERT_TRUE(RunLoopUntil([&] { return QFile::exists(socket); }));
  microphone.start("parec",
                   {"-d", "heard.monitor", "--rate=44100", "--channels=1", "--raw", "--latency-msec=50"});
  QByteArray heard;
  ASSERT_TRUE(RunLoopUntil([&] { return !(heard += microphone.readAll()).isEmpty(); }));

  desktop::SoundPlayer player;
  player.play({std::vector<std::int16_t>(44'100, 0x1234), 1, 44'100});
  const auto count = [&] { return (heard += microphone.readAll()).count("\x34\x12"); };
  constexpr int kNearlyAll = 42'000;  // a recording may skip a little
  EXPECT_TRUE(RunLoopUntil([&] { return count() >= kNearlyAll; })) << count();
  for (QProcess* process : {&microphone, &server}) {
    process->kill();
    process->waitForFinished();
  }
}

}  // namespace quillforth::tests
