// The typed read of the value layer against a plain boost::any_cast copy of the same value.
// Rows come in pairs: BM_X is the operation, BM_Floor_X its floor.
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <benchmark/benchmark.h>

#include <boost/any.hpp>

#include <string>
#include <vector>

namespace ba = treestore::boostany;

namespace {

template <class Held>
void floorCopy(benchmark::State& state, const Held& held) {
    const boost::any value = held;
    for (auto _ : state) {
        benchmark::DoNotOptimize(&value);
        Held copy = boost::any_cast<Held>(value);
        benchmark::DoNotOptimize(copy);
    }
}

template <class T, class Held>
void read(benchmark::State& state, const Held& held, bool allowConversion) {
    const boost::any value = held;
    for (auto _ : state) {
        benchmark::DoNotOptimize(&value);
        T result = ba::get<T>(value, allowConversion);
        benchmark::DoNotOptimize(result);
    }
}

const std::wstring wideText = L"a settings value of moderate length";

void BM_GetExactInt(benchmark::State& s) {
    read<int>(s, 42, false);
}
void BM_Floor_GetExactInt(benchmark::State& s) {
    floorCopy(s, 42);
}
void BM_GetExactDouble(benchmark::State& s) {
    read<double>(s, 0.25, false);
}
void BM_Floor_GetExactDouble(benchmark::State& s) {
    floorCopy(s, 0.25);
}
void BM_GetExactWString(benchmark::State& s) {
    read<std::wstring>(s, wideText, false);
}
void BM_Floor_GetExactWString(benchmark::State& s) {
    floorCopy(s, wideText);
}
void BM_GetStrictOneElementVector(benchmark::State& s) {
    read<int>(s, std::vector<int>{7}, false);
}
void BM_Floor_GetStrictOneElementVector(benchmark::State& s) {
    floorCopy(s, std::vector<int>{7});
}
void BM_GetConvertIntToDouble(benchmark::State& s) {
    read<double>(s, 1234, true);
}
void BM_Floor_GetConvertIntToDouble(benchmark::State& s) {
    floorCopy(s, 1234);
}
void BM_GetConvertWStringToInt(benchmark::State& s) {
    read<int>(s, std::wstring(L"1234"), true);
}
void BM_Floor_GetConvertWStringToInt(benchmark::State& s) {
    floorCopy(s, std::wstring(L"1234"));
}

}  // namespace

BENCHMARK(BM_GetExactInt);
BENCHMARK(BM_Floor_GetExactInt);
BENCHMARK(BM_GetExactDouble);
BENCHMARK(BM_Floor_GetExactDouble);
BENCHMARK(BM_GetExactWString);
BENCHMARK(BM_Floor_GetExactWString);
BENCHMARK(BM_GetStrictOneElementVector);
BENCHMARK(BM_Floor_GetStrictOneElementVector);
BENCHMARK(BM_GetConvertIntToDouble);
BENCHMARK(BM_Floor_GetConvertIntToDouble);
BENCHMARK(BM_GetConvertWStringToInt);
BENCHMARK(BM_Floor_GetConvertWStringToInt);

BENCHMARK_MAIN();
