// SPDX-License-Identifier: MIT

#include "tests/linkextract/ReferenceScanner.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "common/BoundedText.h"
#include "linkextract/PageLinks.h"

namespace quillforth::tests {

namespace {

using namespace std::string_literals;

constexpr std::size_t kNone = std::string::npos;

std::string Cut(const std::string& text) {
  return text.substr(0, 255);
}

std::string Upper(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
  return text;
}

std::string Directory(std::string text, const std::string& scheme) {
  const std::size_t after = text.find(scheme);
  const std::size_t s = text.find('/', after == kNone ? 0 : after + scheme.size());
  if (s == kNone) return "";
  if (const std::size_t q = text.rfind('?'); q != kNone && q > s) text.resize(q);
  if (const std::size_t h = text.rfind('#'); h != kNone) text.resize(h);
  if (const std::size_t d = text.rfind('$'); d != kNone) text.resize(d);
  const std::size_t l = text.rfind('/');
  return l != kNone && l > s + 1 ? text.substr(s + 1, l - s - 1) : "";
}

bool IsUrl(char c) {
  return (c >= 33 && c <= 64) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool IsDelimiter(char c) {
  return c != 0 && std::strchr("\"'()<>\r\n", c) != nullptr;
}

bool Suffix(const std::string& r, const classify::CExtensionMap& extensions) {
  if (r.empty() || extensions.find(Cut("." + r)) != nullptr) return true;
  if (r.size() > 4) return false;
  bool letter = false;
  for (std::size_t i = 1; i < r.size(); ++i) {
    const auto c = static_cast<unsigned char>(r[i]);
    if (c >= 128 || std::isalnum(c) == 0) return false;
    letter = letter || std::isalpha(c) != 0;
  }
  return letter;
}

void Add(const std::string& text, const std::string& base, Links& links) {
  if (text.starts_with('#') || Upper(text).starts_with("MAILTO:")) return;
  const std::string key = Cut(text);
  const auto same =
      std::find_if(links.begin(), links.end(), [&](const auto& link) { return link.first == key; });
  if (same == links.end()) links.emplace_back(key, ReferenceResolve(base, key));
}

void BareLinks(const std::string& text, const std::string& base, const classify::CExtensionMap& extensions,
               Links& links) {
  for (std::size_t i = text.find('.'); i != kNone; i = text.find('.', i + 1)) {
    std::size_t end = i + 1;
    while (end < text.size() && !IsDelimiter(text[end])) ++end;
    const std::string right = text.substr(i + 1, end - i - 1);
    if (end == text.size() || !Suffix(right, extensions) || i < 2) continue;
    std::string left;
    for (std::size_t j = i - 1; j > 0 && !IsDelimiter(text[j]); --j) left.insert(left.begin(), text[j]);
    if (left.empty() || right.empty()) continue;
    if (!std::all_of(left.begin(), left.end(), IsUrl) || !std::all_of(right.begin(), right.end(), IsUrl))
      continue;
    Add(Cut(left.append(".").append(right)), base, links);
  }
}

void Attributes(std::string work, const std::string& base, Links& links) {
  static const std::pair<const char*, const char*> kRows[] = {
      {"HREF=\"", "\""},   {"SRC=\"", "\""},        {"HREF='", "'"},       {"SRC='", "'"},
      {"SRC=", " "},       {"BACKGROUND=\"", "\""}, {"BACKGROUND='", "'"}, {"HREF=", ">"},
      {"SRC=", ">"},       {"BACKGROUND=", ">"},    {"HREF=", " "},        {"SRC=", " "},
      {"BACKGROUND=", " "}};
  for (const auto& [begin, end] : kRows) {
    for (;;) {
      const std::size_t from = Upper(work).find(begin);
      if (from == kNone) break;
      const std::size_t inner = from + std::strlen(begin);
      const std::size_t to = work.find(end, inner);
      if (to == kNone) break;
      Add(work.substr(inner, to - inner), base, links);
      work.erase(from, to + 1 - from);
    }
  }
}

}  // namespace

std::string ReferenceResolve(const std::string& base, const std::string& link) {
  std::string w = link;
  if (link.starts_with("./")) w = link.substr(2);
  if (link.starts_with("//")) w = Cut("http:" + link);
  if (w.find("://") != kNone) return w;
  const std::string text = base.substr(0, base.rfind('#'));
  std::string host;
  if (const std::size_t colon = text.find("://"); colon != kNone) {
    host = text.substr(colon + 3, text.find('/', colon + 3) - colon - 3);
  }
  const std::string directory = Directory(text, "://");
  if (w.starts_with("/")) return Cut("http://" + host + w);
  if (!w.starts_with("../"))
    return Cut("http://" + host + (directory.empty() ? "" : "/" + directory) + "/" + w);
  std::vector<std::string> segments(1);
  for (const char c : directory) c == '/' ? segments.emplace_back() : segments.back() += c;
  std::erase(segments, "");
  std::size_t n = 0;
  for (std::size_t at = w.find("../"); at != kNone; at = w.find("../", at + 3)) ++n;
  std::string result = "http://" + host + "/";
  for (std::size_t i = 0; i + n < segments.size(); ++i) result += segments[i] + "/";
  return Cut(result + w.substr(3 * n));
}

Links ReferenceScan(const std::string& page, const std::string& base,
                    const classify::CExtensionMap& extensions) {
  Links links;
  const std::string text = page.c_str();
  BareLinks(text, base, extensions, links);
  Attributes(text, base, links);
  return links;
}

Links FastScan(const std::string& page, const std::string& base, const classify::CExtensionMap& extensions) {
  linkextract::LinkTable table;
  linkextract::ScanPage(page, common::BoundedText(base), table, extensions);
  Links links;
  for (const linkextract::LinkEntry& entry : table) links.emplace_back(entry.key(), entry.value().view());
  return links;
}

classify::CExtensionMap SomeExtensions() {
  classify::CExtensionMap map;
  const std::string longest = "." + std::string(254, 'e');
  for (const std::string& key :
       {".html"s, ".jpeg"s, ".zip"s, ".tar.gz"s, ".7z"s, ".C"s, ".x"s, ".manifest"s, longest}) {
    platform::ICMapEntry record{};
    record.fileType = static_cast<common::FourCharCode>(1000 + map.size());
    record.fileCreator = record.fileType + 1;
    map.findOrInsert(common::BoundedText(key), record);
  }
  return map;
}

}  // namespace quillforth::tests
