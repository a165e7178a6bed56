// SPDX-License-Identifier: MIT

#include "classify/InternetConfig.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <string_view>

#include "common/BoundedText.h"
#include "net/UTF8.h"

namespace quillforth::classify {

using common::Status;
using platform::ICMapEntry;

CInternetConfig::CInternetConfig(platform::InternetConfigComponent& component, common::FourCharCode creator)
    : component_(component), available_(component.countComponents() != 0), creator_(creator) {}

CInternetConfig::~CInternetConfig() {
  Stop();
}

Status CInternetConfig::Start() {
  const Status status = component_.start(creator_);
  if (status == common::kNoError) started_ = true;
  return status;
}

Status CInternetConfig::Stop() {
  if (!started_) return common::kNotStarted;
  started_ = false;
  return component_.stop();
}

Status CInternetConfig::BeginMapping() {
  nextIndex_ = 1;
  if (!started_) return common::kNotStarted;
  Status status = component_.begin(platform::ICPermission::readOnly);
  if (status != common::kNoError) return status;
  status = openMapping();
  if (status != common::kNoError) component_.end();
  return status;
}

Status CInternetConfig::openMapping() {
  Status status = component_.getPrefHandle("Mapping");
  if (status != common::kNoError) return status;
  hasMappingHandle_ = true;
  std::int32_t count = 0;
  status = component_.countMapEntries(count);
  entryCount_ = status == common::kNoError ? count : 0;
  return status;
}

bool CInternetConfig::NextMapEntry(ICMapEntry& record) {
  if (!started_ || !hasMappingHandle_ || nextIndex_ > entryCount_) return false;
  static_cast<void>(component_.getIndMapEntry(nextIndex_, record));
  ++nextIndex_;
  return true;
}

Status CInternetConfig::EndMapping() {
  if (!started_ || !hasMappingHandle_) return common::kNotStarted;
  component_.disposeHandle();
  hasMappingHandle_ = false;
  return component_.end();
}

common::FourCharCode bundleCreatorCode(platform::MainBundle& bundle) {
  constexpr qsizetype kMaxLength = 254;
  const std::optional<QString> signature =
      bundle.objectForInfoDictionaryKey(QStringLiteral("CFBundleSignature"));
  if (!signature) return 0;
  const std::optional<QByteArray> bytes = platform::UTF8OfText(*signature);
  if (!bytes || bytes->size() > kMaxLength) return 0;
  common::FourCharCode code = 0;
  for (qsizetype i = 0; i < 4; ++i) {
    code = code << 8 | (i < bytes->size() ? static_cast<unsigned char>((*bytes)[i]) : 0U);
  }
  return code;
}

void loadExtensionMappings(platform::InternetConfigComponent& component, platform::MainBundle& bundle,
                           CExtensionMap& map) {
  CInternetConfig config(component, bundleCreatorCode(bundle));
  static_cast<void>(config.Start());
  static_cast<void>(config.BeginMapping());
  ICMapEntry record{};
  while (config.NextMapEntry(record)) {
    const common::BoundedText key(platform::PascalStringView(record.extension));
    map.findOrInsert(key, record).record = record;
  }
  config.EndMapping();
  config.Stop();
}

}  // namespace quillforth::classify
