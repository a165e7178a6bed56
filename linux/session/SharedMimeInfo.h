// SPDX-License-Identifier: MIT
//
// The desktop's own table of types and extensions, offered as the file-mapping preference.
//
// Read from the "mime/globs2" files of the freedesktop Shared MIME-info Database (specification 0.21), in the
// folders of the XDG Base Directory specification. Only plain "*.ext" patterns name an extension;
// "*.tar.gz" gives ".tar.gz". Environment variables are read together with the preference.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/InternetConfigComponent.h"

namespace quillforth::platform {

class SharedMimeInfo final : public InternetConfigComponent {
 public:
  /// A longer globs2 file is not read.
  static constexpr std::size_t kMaxFileLength = std::size_t{4} * 1024 * 1024;
  /// Further records are dropped, those of the least important folder first.
  static constexpr std::size_t kMaxEntries = 32768;

  [[nodiscard]] int countComponents() override { return 1; }
  [[nodiscard]] common::Status start(common::FourCharCode /*creator*/) override { return common::kNoError; }
  common::Status stop() override { return common::kNoError; }
  [[nodiscard]] common::Status begin(ICPermission permission) override;
  common::Status end() override { return common::kNoError; }
  /// Only "Mapping" exists. Of several records for one extension the last is the type to pick. So the
  /// records are ordered by weight. Of equal weights the user's own folder comes after all others, then
  /// types that are not text after those that are, then earlier folders and lines after later ones. So
  /// ".ts", which is a video and a translation with the same weight, is a video.
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
