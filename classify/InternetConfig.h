// SPDX-License-Identifier: MIT
//
// Walks the records of the user's file-mapping preference, and fills the extension table with them at launch.
//
// Main thread. Results are the component's status codes; -1 when not started, or without the preference.
#pragma once

#include <cstdint>

#include "classify/ExtensionMap.h"
#include "common/Status.h"
#include "platform/InternetConfigComponent.h"
#include "platform/MainBundle.h"

namespace quillforth::classify {

class CInternetConfig {
 public:
  /// `component` outlives this object, which stops it at its end if it is still started.
  CInternetConfig(platform::InternetConfigComponent& component, common::FourCharCode creator);
  virtual ~CInternetConfig();
  CInternetConfig(const CInternetConfig&) = delete;
  CInternetConfig& operator=(const CInternetConfig&) = delete;

  /// Whether any component is registered. Nothing here depends on it.
  [[nodiscard]] bool available() const { return available_; }
  [[nodiscard]] common::Status Start();
  common::Status Stop();
  /// Opens the preference for reading and goes to its first record; read access stays open on success only.
  [[nodiscard]] common::Status BeginMapping();
  /// False at the end, or without the preference. A record that the component fails to fill keeps the
  /// caller's content, and counts as read.
  [[nodiscard]] bool NextMapEntry(platform::ICMapEntry& record);
  common::Status EndMapping();

 private:
  [[nodiscard]] common::Status openMapping();

  platform::InternetConfigComponent& component_;
  bool available_;
  bool started_ = false;
  bool hasMappingHandle_ = false;
  std::int32_t entryCount_ = 0;
  std::int32_t nextIndex_ = 0;  // 1-based
  common::FourCharCode creator_;
};

/// The program's signature: the first four bytes of "CFBundleSignature" in UTF-8, missing ones NUL. 0 when
/// the key is absent, longer than 254 bytes, or not valid UTF-16.
[[nodiscard]] common::FourCharCode bundleCreatorCode(platform::MainBundle& bundle);

/// Fills `map` from the component's preference. Of several records for one extension the last is kept, in the
/// first one's place; the host decides about their order (on Linux SharedMimeInfo). After a failure the map
/// keeps what it holds by then, and nothing is reported.
void loadExtensionMappings(platform::InternetConfigComponent& component, platform::MainBundle& bundle,
                           CExtensionMap& map);

}  // namespace quillforth::classify
