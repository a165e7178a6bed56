// SPDX-License-Identifier: MIT
//
// Time per byte of the page scanner. `bytes_per_second` is the figure to look at; `links` counts the table's
// entries, so that a page that finds nothing shows.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/Pages.h"
#include "linkextract/PageLinks.h"

namespace quillforth::bench {
namespace {

constexpr std::size_t kHostileSize = std::size_t{16} << 20;

const common::BoundedText& Base() {
  static const common::BoundedText base("http://www.site-a.test/pictures/2009/index.html");
  return base;
}

void Scan(benchmark::State& state, const std::string& page) {
  std::size_t links = 0;
  while (state.KeepRunning()) {
    linkextract::LinkTable table;
    linkextract::ScanPage(page, Base(), table, Extensions());
    links = table.size();
    benchmark::DoNotOptimize(links);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(page.size()));
  state.counters["links"] = static_cast<double>(links);
}

void ScanOrdinary(benchmark::State& state) {
  Scan(state, OrdinaryPage(static_cast<std::size_t>(state.range(0))));
}
BENCHMARK(ScanOrdinary)
    ->Arg(100'000)
    ->RangeMultiplier(4)
    ->Range(1 << 20, 64 << 20)
    ->Unit(benchmark::kMillisecond);

void ScanDistinctLinks(benchmark::State& state) {
  Scan(state, SortedLinks(static_cast<std::size_t>(state.range(0))));
}
BENCHMARK(ScanDistinctLinks)->Arg(200'000)->Unit(benchmark::kMillisecond);

void ExtractOrdinary(benchmark::State& state) {
  const std::string page = OrdinaryPage(static_cast<std::size_t>(state.range(0)));
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(linkextract::ExtractPageLinks(page, Base().view(), Extensions()).size());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(page.size()));
}
BENCHMARK(ExtractOrdinary)->Arg(1 << 20)->Arg(64 << 20)->Unit(benchmark::kMillisecond);

void ScanHostile(benchmark::State& state) {
  const HostilePage& page = HostilePages().at(static_cast<std::size_t>(state.range(0)));
  state.SetLabel(page.name);
  Scan(state, page.make(kHostileSize));
}
BENCHMARK(ScanHostile)
    ->DenseRange(0, static_cast<std::int64_t>(HostilePages().size()) - 1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillforth::bench

BENCHMARK_MAIN();
