// SPDX-License-Identifier: MIT

#include "desktop/SoundPlayer.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibrary>

namespace quillforth::desktop {

namespace {

constexpr int kPatienceMilliseconds = 500;

// Where it lies from the program, installed or built.
QString ModulePath() {
  const QString path = QCoreApplication::applicationDirPath() +
                       QStringLiteral("/" QUILLFORTH_MODULES_FROM_PROGRAM "/libquillforth_sound.so");
  return QFileInfo(path).isFile() ? path : QString();
}

void LoadAndPlay(const QString& module, const platform::Sound& sound) {
  const auto play = reinterpret_cast<PlaySoundFunction>(QLibrary::resolve(module, kPlaySoundName));
  if (play != nullptr) play(sound);
}

}  // namespace

SoundPlayer::~SoundPlayer() {
  if (!thread_) return;
  thread_->requestInterruption();
  if (thread_->wait(kPatienceMilliseconds)) delete thread_;
}

void SoundPlayer::play(const platform::Sound& sound) {
  const QString module = ModulePath();
  if (thread_ || module.isEmpty()) return;
  thread_ = QThread::create([module, sound] { LoadAndPlay(module, sound); });
  QObject::connect(thread_, &QThread::finished, thread_, &QObject::deleteLater);
  thread_->start();
}

}  // namespace quillforth::desktop
