#include "foundation/QulString.h"

#include <benchmark/benchmark.h>

static void CopyHandle(benchmark::State& state)
{
  const QulString text(L"Software\\Autodesk\\AutoCAD\\R17.1\\ABCD-0001\\");
  for (auto _ : state) {
    const QulString copy(text);
    benchmark::DoNotOptimize(copy.repr);
  }
}
BENCHMARK(CopyHandle);

static void ConcatenatePath(benchmark::State& state)
{
  const QulString base(L"Software\\Autodesk\\");
  const QulString rest(L"AutoCAD\\R17.1\\ABCD-0001\\");
  for (auto _ : state) {
    const QulString path = base + rest;
    benchmark::DoNotOptimize(path.repr);
  }
}
BENCHMARK(ConcatenatePath);

// Twenty columns of a hundred characters each, one format per column.
static void ComposeStatementOf2000Characters(benchmark::State& state)
{
  QulString value;
  for (int i = 0; i < 88; ++i)
    value.Append(L"x");
  for (auto _ : state) {
    QulString statement(L"UPDATE [Bolts]  SET ");
    for (int column = 0; column < 20; ++column)
      statement.Format(L"%s[C%02d]='%s' ,", statement.Text(), column, value.Text());
    benchmark::DoNotOptimize(statement.repr);
  }
}
BENCHMARK(ComposeStatementOf2000Characters);

static void ReplaceQuotesInMemo(benchmark::State& state)
{
  QulString memo;
  for (int i = 0; i < 200; ++i)
    memo.Append(L"bolt M12 'galvanised' ");
  const QulString quote(L"'");
  const QulString doubled(L"''");
  for (auto _ : state) {
    QulString text(memo);
    benchmark::DoNotOptimize(text.Replace(quote, doubled));
  }
}
BENCHMARK(ReplaceQuotesInMemo);

static void TrimCommandLine(benchmark::State& state)
{
  QulString arguments(L"  ");
  for (int i = 0; i < state.range(0); ++i)
    arguments.Append(L"x");
  for (auto _ : state) {
    QulString text(arguments);
    text.TrimLeft();
    benchmark::DoNotOptimize(text.repr);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(TrimCommandLine)->RangeMultiplier(4)->Range(16, 4096)->Complexity();
