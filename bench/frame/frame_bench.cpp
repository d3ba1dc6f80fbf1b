// Loading a library text through the resource switch (get the library's
// module, set it current, load, restore), against a plain hash-map look-up
// of the same texts: the price of the switching sequence.
#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>

#include "nyr/frame/resource_module.h"

namespace {

constexpr unsigned kIds[] = {26000, 26032, 26099, 26115, 26151, 26174, 26241, 26286};

void BM_LoadString_1000Texts(benchmark::State& state)
{
    for (auto _ : state) {
        for (int i = 0; i < 1000; ++i)
            benchmark::DoNotOptimize(NyrLoadString(kIds[i % std::size(kIds)]));
    }
}
BENCHMARK(BM_LoadString_1000Texts);

void BM_UnorderedMap_1000Texts(benchmark::State& state)
{
    std::unordered_map<unsigned, std::string> map;
    for (unsigned id : kIds)
        map.emplace(id, NyrLoadString(id));
    for (auto _ : state) {
        for (int i = 0; i < 1000; ++i)
            benchmark::DoNotOptimize(std::string(map.find(kIds[i % std::size(kIds)])->second));
    }
}
BENCHMARK(BM_UnorderedMap_1000Texts);

}  // namespace

BENCHMARK_MAIN();
