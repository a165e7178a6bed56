// SPDX-License-Identifier: MIT

#include "desktop/SoundPlayer.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <algorithm>

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
  const auto hear = [&] { return (heard += microphone.readAll()).size(); };
  ASSERT_TRUE(RunLoopUntil([&] { return hear() > 0; }));

  platform::Sound sound{std::vector<std::int16_t>(44'100, 0x1234), 1, 44'100};
  std::fill(sound.samples.end() - 4'410, sound.samples.end(), std::int16_t{0x5678});
  desktop::SoundPlayer player;
  // A recorder on a busy machine skips a little. Its end is what a sound would lose: one time in five is
  // enough.
  for (int time = 0; time < 5 && heard.count("\x78\x56") < 4'000; ++time) {
    heard.clear();
    player.play(sound);
    RunLoopUntil([&] { return hear() >= 3 * 2 * 44'100; });  // three seconds
  }
  EXPECT_GE(heard.count("\x78\x56"), 4'000);
  for (QProcess* process : {&microphone, &server}) {
    process->kill();
    process->waitForFinished();
  }
}

}  // namespace quillforth::tests
