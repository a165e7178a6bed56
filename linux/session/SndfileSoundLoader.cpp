// SPDX-License-Identifier: MIT

#include "linux/session/SndfileSoundLoader.h"

#include <sndfile.h>

#include <QFile>

namespace quillforth::platform {

namespace {

struct SoundFileCloser {
  void operator()(SNDFILE* file) const { sf_close(file); }
};

bool IsReasonable(const SF_INFO& info) {
  return info.frames > 0 && info.channels > 0 && info.channels <= SndfileSoundLoader::kMostChannels &&
         info.samplerate > 0 && info.samplerate <= SndfileSoundLoader::kHighestSampleRate &&
         info.frames <= SndfileSoundLoader::kMostSamples / info.channels;
}

}  // namespace

std::unique_ptr<Sound> SndfileSoundLoader::load(const QString& path) {
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, SoundFileCloser> file(
      sf_open(QFile::encodeName(path).constData(), SFM_READ, &info));
  if (!file || !IsReasonable(info)) return nullptr;
  auto sound = std::make_unique<Sound>();
  sound->channels = info.channels;
  sound->sampleRate = info.samplerate;
  sound->samples.resize(static_cast<std::size_t>(info.frames * info.channels));
  if (sf_readf_short(file.get(), sound->samples.data(), info.frames) != info.frames) return nullptr;
  return sound;
}

}  // namespace quillforth::platform
