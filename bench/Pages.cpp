// SPDX-License-Identifier: MIT

#include "bench/Pages.h"

#include <cstdio>
#include <random>
#include <string_view>

namespace quillforth::bench {

namespace {

/// `unit` again and again; "@" in it stands for a number that grows.
std::string Repeated(std::string_view unit, std::size_t size) {
  std::string page;
  page.reserve(size + 2 * unit.size());
  for (unsigned number = 0; page.size() < size; ++number) {
    for (const char c : unit) {
      if (c != '@') {
        page += c;
        continue;
      }
      char digits[16];
      page.append(digits, static_cast<std::size_t>(std::snprintf(digits, sizeof digits, "%07u", number)));
    }
  }
  return page;
}

class OrdinaryPageMaker {
 public:
  std::string make(std::size_t size) {
    page_.reserve(size + 4096);
    page_ +=
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>A site of many "
        "things</title>\n"
        "<link rel=\"stylesheet\" href=\"/css/site.css?v=1.8\" type=\"text/css\">\n"
        "<script src=\"/js/site.min.js\" defer></script>\n</head>\n<body class=\"page page-wide\">\n";
    while (page_.size() < size) section();
    page_ += "</body>\n</html>\n";
    return std::move(page_);
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

  void words(unsigned count) {
    static constexpr std::string_view kWords[] = {
        "the",     "of",  "picture", "and",    "harbour", "a",          "in",     "evening",
        "which",   "was", "taken",   "during", "summer",  "several",    "people", "by",
        "boats",   "on",  "quiet",   "water",  "from",    "where",      "light",  "comes",
        "through", "old", "trees",   "near",   "town",    "caf\xC3\xA9"};
    for (unsigned i = 0; i < count; ++i) {
      page_ += kWords[below(30)];
      page_ += i % 11 == 10 ? ". " : i % 7 == 6 ? ", " : " ";
    }
  }

  std::string number() { return std::to_string(next_++); }

  void section() {
    menu();
    for (unsigned i = 0; i < 8; ++i) article();
    for (unsigned i = 0; i < 3; ++i) table();
    gallery();
    script();
  }

  void menu() {
    page_ += "<nav class=\"menu\" role=\"navigation\">\n<ul>\n";
    for (const char* name : {"home", "news", "pictures", "archive", "about", "contact"}) {
      page_.append("  <li class=\"menu-item\"><a href=\"/").append(name).append("/\" title=\"").append(name);
      page_.append("\">").append(name).append("</a></li>\n");
    }
    page_ += "</ul>\n</nav>\n";
  }

  void article() {
    const std::string id = number();
    page_.append("<article id=\"article-")
        .append(id)
        .append("\" class=\"card card-large\">\n<h2><a href=\"articles/2009/");
    page_.append(id).append("/index.html\">");
    words(6);
    page_ += "</a></h2>\n<p class=\"byline\">By <a href='/people/" + std::to_string(below(50)) + "'>";
    words(2);
    page_ += "</a> &middot; 12.05.2009, 14:30</p>\n";
    for (unsigned paragraph = 0; paragraph < 2; ++paragraph) {
      page_ += "<p>";
      words(35 + below(40));
      page_.append("<a href=\"http://www.site-")
          .append(std::to_string(below(400)))
          .append(".test/path/page-");
      page_.append(number()).append(".html\" rel=\"nofollow\">");
      words(4);
      page_ += "</a> ";
      words(20 + below(20));
      page_ += "</p>\n";
    }
    page_ +=
        "<a href=\"#top\" class=\"up\">Up</a> <a href=\"mailto:editor@site.test\">Write</a>\n</article>\n";
  }

  void table() {
    page_ += "<table class=\"files\" background=\"../images/paper.gif\" width=100%>\n";
    for (unsigned row = 0; row < 6; ++row) {
      const std::string id = number();
      page_.append("<tr><td class=\"name\"><a href=../files/archive-")
          .append(id)
          .append(".zip>archive-")
          .append(id);
      page_.append(".zip</a></td><td align=\"right\">").append(std::to_string(below(9000) + 100));
      page_ += " KB</td><td><img src=/icons/zip.gif width=16 height=16 alt=\"\"></td></tr>\n";
    }
    page_ += "</table>\n";
  }

  void gallery() {
    page_ += "<div class=\"gallery\">\n";
    for (unsigned picture = 0; picture < 12; ++picture) {
      const std::string id = number();
      page_.append("<div class=\"thumb\"><a href=\"gallery/full/IMG_")
          .append(id)
          .append(".jpg\"><img src=\"gallery/thumbs/IMG_");
      page_.append(id).append("_small.jpg\" width=\"160\" height=\"120\" alt=\"Picture ").append(id);
      page_ += "\"></a><span class=\"caption\">";
      words(7);
      page_ += "</span></div>\n";
    }
    page_ += "</div>\n";
  }

  void script() {
    page_ += "<script type=\"text/javascript\">\n(function(){var d=document,w=window;";
    for (unsigned line = 0; line < 12; ++line) {
      page_ += "w.site=w.site||{};w.site.settings={width:" + std::to_string(below(2000)) +
               ",visible:true,name:\"panel\"};if(d.getElementById('panel')){d.getElementById('panel')."
               "className=\"on\";}\n";
    }
    page_ += "})();\n</script>\n";
  }

  std::string page_;
  std::mt19937 random_{1};
  unsigned next_ = 100000;
};

}  // namespace

std::string OrdinaryPage(std::size_t size) {
  return OrdinaryPageMaker().make(size);
}

std::string SortedLinks(std::size_t count) {
  constexpr std::string_view kLine = "<a href=\"page@.html\">@</a>\n";
  return Repeated(kLine, count * (kLine.size() + 12));
}

const std::vector<HostilePage>& HostilePages() {
  static const std::vector<HostilePage> pages{
      {"dots", [](std::size_t size) { return Repeated(".", size) + "\""; }},
      {"dots and quotes", [](std::size_t size) { return Repeated("......\"", size); }},
      {"words of dots", [](std::size_t size) { return Repeated("<.a.b.c.d.e.f.g>", size); }},
      {"short bare links", [](std::size_t size) { return Repeated("\"a.bc", size); }},
      {"unclosed href", [](std::size_t size) { return Repeated("<a href=\"", 9) + Repeated("<p>", size); }},
      {"href never closed", [](std::size_t size) { return Repeated("<a href=", size); }},
      {"one link", [](std::size_t size) { return Repeated("<a href=\"x\">", size); }},
      {"sorted links", [](std::size_t size) { return SortedLinks(size / 40); }},
      {"quotes", [](std::size_t size) { return Repeated("\"", size); }},
      {"quotes and names", [](std::size_t size) { return Repeated("href=\"\"src=''", size); }},
      {"seams", [](std::size_t size) { return Repeated("sr", size / 2) + Repeated("src= c=a ", size / 2); }},
      {"nested seams",
       [](std::size_t size) { return Repeated("h", size / 3) + Repeated("href=\"x\"ref=\"\"", size); }},
      {"blank rows", [](std::size_t size) { return Repeated("<a href=x b src=y c background=z d ", size); }},
      {"src everywhere", [](std::size_t size) { return Repeated("src=", size); }},
      {"empty src", [](std::size_t size) { return Repeated("src= ", size); }},
      {"cuts without joins",
       [](std::size_t size) {
         return "<background=a>href=b>" + Repeated("src= x", size) + "background=a href=b src=c>";
       }},
      {"equals signs", [](std::size_t size) { return Repeated("d=", size); }},
      {"one long link", [](std::size_t size) { return "<a href=\"" + Repeated("x", size) + "\">"; }},
  };
  return pages;
}

const classify::CExtensionMap& Extensions() {
  static const classify::CExtensionMap extensions = [] {
    classify::CExtensionMap map;
    for (const char* key : {".html", ".jpeg", ".tar.gz", ".manifest"})
      map.findOrInsert(common::BoundedText(key), {});
    std::mt19937 random(3);
    while (map.size() < 1000) {
      std::string key = ".";
      for (std::size_t left = 2 + random() % 5; left > 0; --left)
        key += static_cast<char>('a' + random() % 26);
      map.findOrInsert(common::BoundedText(key), {});
    }
    return map;
  }();
  return extensions;
}

}  // namespace quillforth::bench
