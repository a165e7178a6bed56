// SPDX-License-Identifier: MIT
//
// Finding the links of real pages, against two parsers that do nothing with a page but look at its tags.
//
//   links_benchmark ROUNDS FILE...
//
// All pages are in memory before the clock starts. Libxml2 calls back for each tag and builds no tree; gumbo
// always builds one. Prints for each its name, the seconds of the median round, the links, and the bytes.

#include <gumbo.h>
#include <libxml/HTMLparser.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "bench/Pages.h"
#include "linkextract/PageLinks.h"

namespace {

using namespace quillforth;

constexpr const char* kBase = "http://www.site-a.test/manual/index.html";

std::size_t OwnLinks(const std::string& page) {
  return linkextract::ExtractPageLinks(page, kBase, bench::Extensions()).size();
}

bool IsLink(const xmlChar* name) {
  return xmlStrEqual(name, BAD_CAST "href") != 0 || xmlStrEqual(name, BAD_CAST "src") != 0;
}

void CountLinks(void* count, const xmlChar* /*tag*/, const xmlChar** attributes) {
  for (; attributes != nullptr && *attributes != nullptr; attributes += 2) {
    if (IsLink(*attributes)) ++*static_cast<std::size_t*>(count);
  }
}

std::size_t LibxmlLinks(const std::string& page) {
  htmlParserCtxtPtr context = htmlCreateMemoryParserCtxt(page.data(), static_cast<int>(page.size()));
  std::size_t count = 0;
  *context->sax = {};
  context->sax->startElement = &CountLinks;
  context->userData = &count;
  htmlParseDocument(context);
  htmlFreeParserCtxt(context);
  return count;
}

std::size_t LinksBelow(const GumboNode& node) {
  if (node.type != GUMBO_NODE_ELEMENT) return 0;
  const GumboElement& element = node.v.element;
  std::size_t count = 0;
  for (const char* name : {"href", "src"}) {
    if (gumbo_get_attribute(&element.attributes, name) != nullptr) ++count;
  }
  for (unsigned i = 0; i < element.children.length; ++i)
    count += LinksBelow(*static_cast<const GumboNode*>(element.children.data[i]));
  return count;
}

std::size_t GumboLinks(const std::string& page) {
  GumboOutput* output = gumbo_parse_with_options(&kGumboDefaultOptions, page.data(), page.size());
  const std::size_t count = LinksBelow(*output->root);
  gumbo_destroy_output(&kGumboDefaultOptions, output);
  return count;
}

struct Contender {
  const char* name;
  std::size_t (*linksOf)(const std::string& page);
  std::vector<double> seconds{};
  std::size_t links = 0;
};

void Measure(Contender& contender, const std::vector<std::string>& pages) {
  const auto start = std::chrono::steady_clock::now();
  contender.links = 0;
  for (const std::string& page : pages) contender.links += contender.linksOf(page);
  contender.seconds.push_back(
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 2 ? std::atoi(argv[1]) : 0;
  if (rounds < 1) return 2;
  std::vector<std::string> pages;
  std::size_t bytes = 0;
  for (int i = 2; i < argc; ++i) {
    std::ifstream file(argv[i], std::ios::binary);
    pages.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    bytes += pages.back().size();
  }
  std::array contenders{Contender{"ours", &OwnLinks}, Contender{"libxml2", &LibxmlLinks},
                        Contender{"gumbo", &GumboLinks}};
  for (int round = 0; round < rounds; ++round) {
    for (Contender& contender : contenders) Measure(contender, pages);
  }
  for (Contender& contender : contenders) {
    std::sort(contender.seconds.begin(), contender.seconds.end());
    std::printf("%s %.4f %zu %zu\n", contender.name, contender.seconds[contender.seconds.size() / 2],
                contender.links, bytes);
  }
}
