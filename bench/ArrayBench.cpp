#include "foundation/QulArray.h"
#include "foundation/QulString.h"

#include <benchmark/benchmark.h>

static void AppendNumbers(benchmark::State& state)
{
  for (auto _ : state) {
    QulArray<int> numbers;
    for (int i = 0; i < state.range(0); ++i)
      numbers.Append(i);
    benchmark::DoNotOptimize(numbers.data);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(AppendNumbers)->RangeMultiplier(4)->Range(8, 2048)->Complexity();

static void AppendSharedStrings(benchmark::State& state)
{
  const QulString name(L"InfoTableRelations");
  for (auto _ : state) {
    QulArray<QulString> names;
    for (int i = 0; i < state.range(0); ++i)
      names.Append(name);
    benchmark::DoNotOptimize(names.data);
  }
}
BENCHMARK(AppendSharedStrings)->Arg(17)->Arg(255);

static void CopyStringArray(benchmark::State& state)
{
  QulArray<QulString> names;
  for (int i = 0; i < 255; ++i)
    names.Append(L"InfoTableRelations");
  for (auto _ : state) {
    const QulArray<QulString> copy(names);
    benchmark::DoNotOptimize(copy.data);
  }
}
BENCHMARK(CopyStringArray);
