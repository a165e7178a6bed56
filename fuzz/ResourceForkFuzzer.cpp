// SPDX-License-Identifier: MIT
//
// Bytes as a resource fork, an AppleDouble file, each kind of link file and a file URL: refused, or read
// without a step outside. `resource_fork_seeds` makes bytes to begin with.

#include <cstdint>
#include <cstdlib>

#include "linux/linkfiles/LinkFile.h"
#include "linux/linkfiles/ResourceMap.h"
#include "net/URL.h"

namespace {

using namespace quillforth::platform;

void Require(bool holds) {
  if (!holds) std::abort();
}

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
  Require(count < 65536 && count * 12 <= static_cast<std::size_t>(bytes.size()));
  Require(!fork->resource(kURLResourceType, 0) && !fork->resource(kURLResourceType, count + 1));
  for (std::size_t index = 1; index <= count; ++index) {
    if (const auto resource = fork->resource(kURLResourceType, index)) Require(LiesIn(*resource, bytes));
  }
}

void CheckFileURL(QByteArrayView bytes) {
  const auto file = FileAtURL(bytes);
  if (file) Require(FileAtURL(FileURL(*file)) == file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QByteArrayView bytes(data, static_cast<qsizetype>(size));
  CheckFork(bytes);
  if (const auto fork = ResourceForkInAppleDouble(bytes)) CheckFork(*fork);
  for (const char* name : {"a.webloc", "a.url", "a.desktop", "a"}) {
    if (const auto url = URLInLinkFile(name, bytes)) Require(url->size() <= 4 * bytes.size());
  }
  CheckFileURL(bytes);
  return 0;
}
