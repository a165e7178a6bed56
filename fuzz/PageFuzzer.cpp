// SPDX-License-Identifier: MIT
//
// The bytes of a page: what they are as text, which base its links have, and that all links fit their fields.

#include "fuzz/Fuzz.h"
#include "linkextract/PageLinks.h"
#include "linkextract/PageText.h"
#include "net/UTF8.h"
#include "tests/linkextract/ReferenceScanner.h"

namespace quillforth::fuzz {

using namespace linkextract;

namespace {

// Each byte by itself; one above ASCII is no UTF-8 then.
std::string MacRoman(std::string_view bytes) {
  std::string text;
  for (const char& byte : bytes) text += DecodePage({&byte, 1})->view();
  return text;
}

std::string Upper(std::string text) {
  for (char& c : text) c = common::UpperCased(c);
  return text;
}

std::string Between(const std::string& text, const char* begin, const char* end) {
  const std::string upper = Upper(text), first = Upper(begin);
  const std::size_t from = upper.find(first);
  if (from == std::string::npos) return {};
  const std::size_t to = upper.find(Upper(end), from + first.size());
  return to == std::string::npos ? std::string() : text.substr(from + first.size(), to - from - first.size());
}

std::string PlainBase(const std::string& page, const std::string& url) {
  const bool isNamed = Upper(Between(page, "<head>", "</head>")).find("<BASE HREF=") != std::string::npos;
  const std::string base = isNamed ? Between(page, "<base href=\"", "\"") : std::string();
  return (base.empty() ? url : base).substr(0, 255);
}

}  // namespace

void Check(std::string_view input) {
  static const classify::CExtensionMap extensions = tests::SomeExtensions();
  const bool isUTF8 = IsValidUTF8(input);
  const QByteArrayView bytes(input.data(), static_cast<qsizetype>(input.size()));
  Require(isUTF8 == platform::TextFromUTF8(bytes).has_value(), "two readers agree on what UTF-8 is");
  const std::string_view shown = common::UpToNul(input);
  const std::string page(DecodePage(input)->view());
  Require(page == (isUTF8 ? std::string(shown) : MacRoman(shown)), "a page is UTF-8 or Mac OS Roman");
  const std::string url = "http://own/" + page.substr(0, 20);
  Require(FindPageBase(page, url).view() == PlainBase(page, url), "the base is the one that plain cuts find");
  for (const LinkEntry& link : ExtractPageLinks(input, url, extensions)) {
    Require(link.key().size() <= 255 && link.value().size() <= 255, "a link fits its field");
    Require(!isUTF8 || page.find(link.key()) != std::string::npos || page.size() > link.key().size(),
            "a link comes out of the page");
  }
}

}  // namespace quillforth::fuzz
