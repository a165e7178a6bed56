// SPDX-License-Identifier: MIT

#include "bench/storm/StormItem.h"

#include <array>
#include <random>
#include <utility>

namespace quillforth::bench {

namespace {

constexpr std::uint64_t kSharedNames = 5;
constexpr std::size_t kLargeLength = 3'000'000;

// FNV-1a.
std::uint64_t HashOf(std::string_view text, std::uint64_t seed) {
  std::uint64_t hash = 14695981039346656037ULL ^ seed;
  for (const char character : text) hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211ULL;
  return hash;
}

class Dice {
 public:
  Dice(std::string_view text, std::uint64_t seed) : engine_(HashOf(text, seed)) {}
  /// 0 to `count` - 1.
  std::uint64_t roll(std::uint64_t count) { return engine_() % count; }

 private:
  std::mt19937_64 engine_;
};

Fate FateOf(std::uint64_t percent, bool isPage) {
  constexpr std::array<std::pair<std::uint64_t, Fate>, 10> kBounds{{{45, Fate::whole},
                                                                    {62, Fate::slow},
                                                                    {70, Fate::dripping},
                                                                    {74, Fate::unmeasured},
                                                                    {79, Fate::redirected},
                                                                    {83, Fate::renamed},
                                                                    {87, Fate::locked},
                                                                    {92, Fate::missing},
                                                                    {95, Fate::cut},
                                                                    {97, Fate::reset}}};
  for (const auto& [bound, fate] : kBounds) {
    if (percent >= bound) continue;
    const bool isOnlyForFiles = fate == Fate::renamed || fate == Fate::locked;
    return isPage && isOnlyForFiles ? Fate::slow : fate;
  }
  return Fate::held;
}

std::size_t LengthOf(Dice& dice) {
  const std::uint64_t size = dice.roll(100);
  if (size < 70) return 200 + dice.roll(8'000);
  return size < 95 ? 20'000 + dice.roll(300'000) : kLargeLength;
}

}  // namespace

StormItem ItemAt(std::string_view path, std::uint64_t seed) {
  path = path.substr(0, path.find('?'));
  Dice dice(path, seed);
  StormItem item{.path = std::string(path)};
  const std::size_t dot = path.rfind('.');
  item.isPage = dot == std::string_view::npos ? dice.roll(2) == 0 : path.substr(dot) == ".html";
  item.fate = FateOf(dice.roll(100), item.isPage);
  item.milliseconds = static_cast<int>(20 + dice.roll(dice.roll(4) == 0 ? 2'500 : 400));
  if (item.fate == Fate::held) item.milliseconds += 3'000;
  item.length = LengthOf(dice);
  return item;
}

std::vector<std::string> LinksOf(const StormItem& page, std::uint64_t seed) {
  constexpr std::array kExtensions{".bin", ".zip", ".png", ".dat"};
  std::vector<std::string> links;
  if (!page.isPage) return links;
  Dice dice(page.path + "#links", seed);
  const std::string stem = page.path.substr(0, page.path.rfind('.'));
  const std::uint64_t count = 1 + dice.roll(8);
  for (std::uint64_t i = 0; i < count; ++i) {
    links.push_back(stem + "-" + std::to_string(i) + kExtensions[dice.roll(kExtensions.size())]);
  }
  return links;
}

std::string BodyOf(const StormItem& item, std::uint64_t seed) {
  std::string body;
  if (item.isPage) {
    body = "<html><body>\n";
    for (const std::string& link : LinksOf(item, seed)) body += "<a href=\"" + link + "\">a link</a>\n";
    return body + "</body></html>\n";
  }
  body = item.path + "\n";
  std::mt19937_64 noise(HashOf(item.path + "#body", seed));
  while (body.size() < item.length) {
    const std::uint64_t bits = noise();
    body.append(reinterpret_cast<const char*>(&bits), sizeof bits);
  }
  return body;
}

std::optional<std::string> PathInBody(std::string_view body) {
  const std::size_t end = body.find('\n');
  if (end == std::string_view::npos || !body.starts_with('/')) return std::nullopt;
  return std::string(body.substr(0, end));
}

std::string SharedName(const StormItem& item, std::uint64_t seed) {
  return "shared-" + std::to_string(HashOf(item.path, seed) % kSharedNames) + ".bin";
}

}  // namespace quillforth::bench
