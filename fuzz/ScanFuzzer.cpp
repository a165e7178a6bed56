// SPDX-License-Identifier: MIT
//
// The scanner against its plain reference on whatever the fuzzer thinks of: the first line is the base, the
// rest the page. The same bytes go through decoding and the search for the page's own base, which only have
// to survive.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "common/BoundedText.h"
#include "linkextract/PageLinks.h"
#include "tests/linkextract/ReferenceScanner.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quillforth;
  static const classify::CExtensionMap extensions = tests::SomeExtensions();
  const std::string input(data, data + size);
  const std::size_t line = std::min(input.find('\n'), input.size());
  const std::string base(common::BoundedText(input.substr(0, line)).view());
  const std::string page = input.substr(std::min(line + 1, input.size()));
  if (tests::FastScan(page, base, extensions) != tests::ReferenceScan(page, base, extensions)) {
    std::fputs("the scanner and its reference differ\n", stderr);
    std::abort();
  }
  static_cast<void>(linkextract::ExtractPageLinks(input, base, extensions));
  return 0;
}
