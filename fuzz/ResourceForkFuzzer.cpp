// SPDX-License-Identifier: MIT
//
// Bytes as a resource fork, an AppleDouble file, each kind of link file and a file URL: refused, or read
// without a step outside.

#include "fuzz/Fuzz.h"
#include "linux/linkfiles/LinkFile.h"
#include "linux/linkfiles/ResourceMap.h"
#include "net/URL.h"

namespace quillforth::fuzz {

using namespace platform;

namespace {

// Whether all of `part` is in `whole`. Only a look at every byte shows the sanitizer what is not.
bool LiesIn(QByteArrayView part, QByteArrayView whole) {
  std::uint8_t sum = 0;
  for (const char byte : part) sum = static_cast<std::uint8_t>(sum ^ static_cast<std::uint8_t>(byte));
  volatile const std::uint8_t looked = sum;
  static_cast<void>(looked);
  return part.size() <= whole.size();
}

void CheckFork(QByteArrayView bytes) {
  const auto fork = ResourceMap::read(bytes.toByteArray());
  if (fork == nullptr) return;
  const std::size_t count = fork->countResources(kURLResourceType);
  Require(count < 65536 && count * 12 <= static_cast<std::size_t>(bytes.size()), "the count has room");
  Require(!fork->resource(kURLResourceType, 0) && !fork->resource(kURLResourceType, count + 1),
          "indexes go from 1 to the count");
  for (std::size_t index = 1; index <= count; ++index) {
    const auto resource = fork->resource(kURLResourceType, index);
    Require(!resource || LiesIn(*resource, bytes), "a resource lies in its fork");
  }
}

}  // namespace

void Check(std::string_view input) {
  const QByteArrayView bytes(input.data(), static_cast<qsizetype>(input.size()));
  CheckFork(bytes);
  if (const auto fork = ResourceForkInAppleDouble(bytes)) CheckFork(*fork);
  for (const char* name : {"a.webloc", "a.url", "a.desktop", "a"}) {
    const auto url = URLInLinkFile(name, bytes);
    Require(!url || url->size() <= 4 * bytes.size(), "a URL is not longer than its file allows");
  }
  const auto file = FileAtURL(bytes);
  Require(!file || FileAtURL(FileURL(*file)) == file, "a file URL comes back");
}

}  // namespace quillforth::fuzz
