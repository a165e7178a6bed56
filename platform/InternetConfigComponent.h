// SPDX-License-Identifier: MIT
//
// The user's file-mapping preference: which type goes with which file-name extension.
//
// The operations are the few that the loader of the extension table needs. The host decides where the records
// come from. Main thread, at launch.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "common/Status.h"

namespace quillforth::platform {

/// A length byte and at most 255 bytes of text.
using PascalString = std::array<std::uint8_t, 256>;

/// `text` cut at 255 bytes.
[[nodiscard]] inline PascalString MakePascalString(std::string_view text) noexcept {
  PascalString result{};
  text = text.substr(0, result.size() - 1);
  result[0] = static_cast<std::uint8_t>(text.size());
  std::copy(text.begin(), text.end(), result.begin() + 1);
  return result;
}
/// The bytes of `text`, which must outlive the view.
[[nodiscard]] inline std::string_view PascalStringView(const PascalString& text) noexcept {
  return {reinterpret_cast<const char*>(text.data()) + 1, text[0]};
}

#pragma pack(push, 2)
/// One mapping record, 1302 bytes.
///
///     0  totalLength  2  fixedLength  4  version  6  fileType  10  fileCreator  14  postCreator  18  flags
///     22 extension  278 creatorAppName  534 postAppName  790 MIMEType  1046 entryName   (Pascal strings)
struct ICMapEntry {
  std::int16_t totalLength;
  std::int16_t fixedLength;
  std::int16_t version;
  common::FourCharCode fileType;
  common::FourCharCode fileCreator;
  common::FourCharCode postCreator;
  std::uint32_t flags;
  PascalString extension;  ///< with its leading "."
  PascalString creatorAppName;
  PascalString postAppName;
  PascalString MIMEType;
  PascalString entryName;
};
#pragma pack(pop)
static_assert(sizeof(ICMapEntry) == 1302);

enum class ICPermission { readOnly, readWrite };

/// The preference component, one instance at a time. All indexes are 1-based; all results are status codes.
class InternetConfigComponent {
 public:
  virtual ~InternetConfigComponent() = default;
  /// How many components are registered; 0: none, and `start` fails.
  [[nodiscard]] virtual int countComponents() = 0;
  [[nodiscard]] virtual common::Status start(common::FourCharCode creator) = 0;
  virtual common::Status stop() = 0;
  [[nodiscard]] virtual common::Status begin(ICPermission permission) = 0;
  virtual common::Status end() = 0;
  /// Reads the preference named `key` and holds it until `disposeHandle`.
  [[nodiscard]] virtual common::Status getPrefHandle(std::string_view key) = 0;
  virtual void disposeHandle() = 0;
  [[nodiscard]] virtual common::Status countMapEntries(std::int32_t& count) = 0;
  [[nodiscard]] virtual common::Status getIndMapEntry(std::int32_t index, ICMapEntry& entry) = 0;
};

}  // namespace quillforth::platform
