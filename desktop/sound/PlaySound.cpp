// SPDX-License-Identifier: MIT

#include "desktop/sound/PlaySound.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QBuffer>
#include <QEventLoop>
#include <QMediaDevices>
#include <QTimer>

namespace {

constexpr int kSlackMilliseconds = 2000;
// The toolkit says that all is played when all is handed over, and what the device has not played by then is
// lost.
constexpr int kSilenceMicroseconds = 1'000'000;

QAudioFormat FormatOf(const quillforth::platform::Sound& sound) {
  QAudioFormat format;
  format.setSampleRate(sound.sampleRate);
  format.setChannelCount(sound.channels);
  format.setSampleFormat(QAudioFormat::Int16);
  return format;
}

}  // namespace

extern "C" Q_DECL_EXPORT void QuillforthPlaySound(const quillforth::platform::Sound& sound) {
  const QAudioDevice device = QMediaDevices::defaultAudioOutput();
  const QAudioFormat format = FormatOf(sound);
  if (device.isNull() || !format.isValid() || !device.isFormatSupported(format)) return;
  QBuffer samples;
  samples.setData(reinterpret_cast<const char*>(sound.samples.data()),
                  static_cast<int>(sound.samples.size() * sizeof sound.samples[0]));
  samples.buffer().append(QByteArray(format.bytesForDuration(kSilenceMicroseconds), '\0'));
  samples.open(QIODevice::ReadOnly);

  QEventLoop loop;
  QAudioSink sink(device, format);
  QObject::connect(&sink, &QAudioSink::stateChanged, &loop, [&loop, &samples](QAudio::State state) {
    const bool isOver = state == QAudio::IdleState && samples.atEnd();  // and not only short of samples
    if (isOver || state == QAudio::StoppedState) loop.quit();
  });
  const auto length = static_cast<int>(format.durationForBytes(static_cast<qint32>(samples.size())) / 1000);
  QTimer limit;
  QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
  limit.start(length + kSlackMilliseconds);
  sink.start(&samples);
  if (sink.state() == QAudio::ActiveState) loop.exec();
}
