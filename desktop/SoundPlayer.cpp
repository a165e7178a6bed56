// SPDX-License-Identifier: MIT

#include "desktop/SoundPlayer.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibrary>
#include <QStringList>

namespace quillforth::desktop {

namespace {

constexpr int kPatienceMilliseconds = 500;

// Beside the binary where it is installed, else in the build tree.
QString ModulePath() {
  const QStringList folders = {
      QCoreApplication::applicationDirPath() + QStringLiteral("/" QUILLFORTH_MODULES_FROM_PROGRAM),
      QStringLiteral(QUILLFORTH_BUILT_MODULES)};
  for (const QString& folder : folders) {
    QString path = folder + QStringLiteral("/libquillforth_sound.so");
    if (QFileInfo(path).isFile()) return path;
  }
  return {};
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
