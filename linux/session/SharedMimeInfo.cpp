// SPDX-License-Identifier: MIT

#include "linux/session/SharedMimeInfo.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <utility>

#include "linux/files/LinuxFileManager.h"

namespace quillforth::platform {

namespace {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

// Splits off the text before the next `separator`, which is dropped.
std::string_view TakeField(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view field = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return field;
}

// The most important folder first. The XDG specification ignores relative ones.
std::vector<std::filesystem::path> DataFolders() {
  std::vector<std::filesystem::path> folders;
  const auto add = [&folders](const std::filesystem::path& folder) {
    const std::filesystem::path normal = folder.lexically_normal();
    if (folder.is_absolute() && std::find(folders.begin(), folders.end(), normal) == folders.end()) {
      folders.push_back(normal);
    }
  };
  add(DataFolder());
  std::string others = Environment("XDG_DATA_DIRS");
  if (others.empty()) others = "/usr/local/share:/usr/share";
  for (std::string_view left = others; !left.empty();) add(TakeField(left, ':'));
  return folders;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return {};
  const std::uintmax_t length = std::filesystem::file_size(path, error);
  if (error || length > SharedMimeInfo::kMaxFileLength) return {};
  std::string text(static_cast<std::size_t>(length), '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

struct GlobLine {
  int weight = 0;
  std::string_view type;
  std::string_view pattern;
};

bool IsType(std::string_view text) {
  const auto isVisible = [](char c) { return c > ' ' && c < '\x7f'; };
  const std::size_t slash = text.find('/');
  return text.size() <= 255 && slash != 0 && slash < text.size() - 1 &&
         std::all_of(text.begin(), text.end(), isVisible);
}

bool IsText(std::string_view type) {
  return type.starts_with("text/");
}

// "weight:type:pattern" and possibly more fields, such as ":cs" for a pattern in which letter case counts. In
// the extension table it always counts.
std::optional<GlobLine> ParseLine(std::string_view line) {
  GlobLine glob;
  const std::string_view weight = TakeField(line, ':');
  glob.type = TakeField(line, ':');
  glob.pattern = TakeField(line, ':');
  const char* end = weight.data() + weight.size();
  const auto parsed = std::from_chars(weight.data(), end, glob.weight);
  const bool isWeight =
      parsed.ec == std::errc() && parsed.ptr == end && glob.weight >= 0 && glob.weight <= 100;
  if (!isWeight || !IsType(glob.type)) return std::nullopt;
  return glob;
}

// ".ext" of "*.ext"; empty when the pattern is anything else.
std::string_view ExtensionOf(std::string_view pattern) {
  if (pattern.size() < 3 || !pattern.starts_with("*.")) return {};
  const std::string_view extension = pattern.substr(1);
  return extension.find_first_of("*?[]\\") == std::string_view::npos ? extension : std::string_view{};
}

std::int16_t PackedLength(const ICMapEntry& entry) {
  std::size_t length = offsetof(ICMapEntry, extension);
  for (const PascalString* text :
       {&entry.extension, &entry.creatorAppName, &entry.postAppName, &entry.MIMEType, &entry.entryName}) {
    length += std::size_t{1} + PascalStringView(*text).size();
  }
  return static_cast<std::int16_t>(length);
}

}  // namespace

common::Status SharedMimeInfo::begin(ICPermission permission) {
  return permission == ICPermission::readOnly ? common::kNoError : common::kPermissionDenied;
}

common::Status SharedMimeInfo::getPrefHandle(std::string_view key) {
  if (key != "Mapping") return common::kFileNotFound;
  globs_.clear();
  std::set<std::string, std::less<>> hiddenTypes;
  const std::vector<std::filesystem::path> folders = DataFolders();
  std::ptrdiff_t own = 0;  // globs of the user's folder
  for (const std::filesystem::path& folder : folders) {
    readFolder(folder, hiddenTypes);
    if (folder == folders.front()) own = static_cast<std::ptrdiff_t>(globs_.size());
  }
  // Text loses against types of the same weight, because a file that is taken for a page is not downloaded.
  // It goes to the end here, and the reversal below brings it to the front.
  const auto isNoText = [](const Glob& glob) { return !IsText(glob.type); };
  std::stable_partition(globs_.begin(), globs_.begin() + own, isNoText);
  std::stable_partition(globs_.begin() + own, globs_.end(), isNoText);
  // The record that was read first matters most, so it comes last among equals.
  std::reverse(globs_.begin(), globs_.end());
  std::stable_sort(globs_.begin(), globs_.end(),
                   [](const Glob& a, const Glob& b) { return a.weight < b.weight; });
  return common::kNoError;
}

// A type with the pattern "__NOGLOBS__" hides its patterns in all folders that matter less.
void SharedMimeInfo::readFolder(const std::filesystem::path& folder,
                                std::set<std::string, std::less<>>& hiddenTypes) {
  const std::string text = ReadFile(folder / "mime/globs2");
  std::vector<std::string> newlyHidden;
  for (std::string_view left = text; !left.empty();) {
    const std::optional<GlobLine> line = ParseLine(TakeField(left, '\n'));
    if (!line) continue;
    if (line->pattern == "__NOGLOBS__") newlyHidden.emplace_back(line->type);
    const std::string_view extension = ExtensionOf(line->pattern);
    if (extension.empty() || globs_.size() >= kMaxEntries || hiddenTypes.contains(line->type)) continue;
    globs_.push_back({line->weight, std::string(extension), std::string(line->type)});
  }
  hiddenTypes.insert(newlyHidden.begin(), newlyHidden.end());
}

common::Status SharedMimeInfo::countMapEntries(std::int32_t& count) {
  count = static_cast<std::int32_t>(globs_.size());
  return common::kNoError;
}

common::Status SharedMimeInfo::getIndMapEntry(std::int32_t index, ICMapEntry& entry) {
  if (index < 1 || static_cast<std::size_t>(index) > globs_.size()) return common::kBadParameter;
  const Glob& glob = globs_[static_cast<std::size_t>(index) - 1];
  entry = {};
  entry.fixedLength = offsetof(ICMapEntry, extension);
  entry.version = 1;
  entry.fileType = common::FourCC(IsText(glob.type) ? "TEXT" : "BINA");
  entry.fileCreator = common::FourCC("????");
  entry.extension = MakePascalString(glob.extension);
  entry.MIMEType = MakePascalString(glob.type);
  entry.entryName = MakePascalString(glob.type);
  entry.totalLength = PackedLength(entry);
  return common::kNoError;
}

}  // namespace quillforth::platform
