// SPDX-License-Identifier: MIT
//
// The desktop's own table of types and extensions, offered as the file-mapping preference.
//
// Read from the "mime/globs2" files of the freedesktop Shared MIME-info Database (specification 0.21), in the
// folders of the XDG Base Directory specification. Only plain "*.ext" patterns name an extension; one such as
// "*.tar.gz" gives ".tar.gz". Environment variables are read when the preference is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/InternetConfig.h"

namespace quillforth::platform {

class SharedMimeInfo final : public InternetConfigComponent {
 public:
  /// A longer globs2 file is passed over.
  static constexpr std::size_t kMaxFileLength = std::size_t{4} * 1024 * 1024;
  /// Further records are dropped, those of the least important folder first.
  static constexpr std::size_t kMaxEntries = 32768;

  [[nodiscard]] int countComponents() override { return 1; }
  [[nodiscard]] common::Status start(common::FourCharCode creator) override;
  common::Status stop() override;
  [[nodiscard]] common::Status begin(ICPermission permission) override;
  common::Status end() override;
  /// Only "Mapping" exists. Its records are ordered so that of several for one extension the last is the type
  /// to pick: by weight, then the user's own folder after all others, then what is no text after what is,
  /// then backwards through the folders and each file. So ".ts", a video as well as a translation by the same
  /// weight, is a video.
  [[nodiscard]] common::Status getPrefHandle(std::string_view key) override;
  void disposeHandle() override { globs_.clear(); }
  [[nodiscard]] common::Status countMapEntries(std::int32_t& count) override;
  [[nodiscard]] common::Status getIndMapEntry(std::int32_t index, ICMapEntry& entry) override;

 private:
  struct Glob {
    int weight = 0;         // 0 to 100
    std::string extension;  // with its leading "."
    std::string type;
  };

  void readFolder(const std::filesystem::path& folder, std::set<std::string, std::less<>>& hiddenTypes);

  std::vector<Glob> globs_;
};

}  // namespace quillforth::platform
