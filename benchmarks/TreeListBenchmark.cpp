#include <benchmark/benchmark.h>

#include <vector>

#include "ui/TreeListModel.h"

namespace {

constexpr std::size_t kPageSize = 30;

/// So many rows as a scan of nested assemblies enters them: each tenth one begins an assembly.
std::vector<TTreeRow> Rows(std::int64_t count) {
  std::vector<TTreeRow> rows;
  for (std::int64_t key = 1; key <= count; ++key) {
    const std::int64_t assembly = key - (key - 1) % 10;
    const std::int64_t above = assembly == 1 ? -1 : assembly - 10 * ((assembly / 10) % 7 + 1);
    rows.push_back({key, key == assembly ? above : assembly, key == assembly ? 94 : 93});
  }
  return rows;
}

TTreeListModel Model(const benchmark::State& state) {
  TTreeListModel model;
  model.Attach(Rows(state.range(0)), -1);
  return model;
}

void Attach(benchmark::State& state) {
  const std::vector<TTreeRow> rows = Rows(state.range(0));
  TTreeListModel model;
  for (auto _ : state) model.Attach(rows, -1);
}

void OpenAll(benchmark::State& state) {
  TTreeListModel model = Model(state);
  for (auto _ : state) model.OpenAll();
}

void CloseAll(benchmark::State& state) {
  TTreeListModel model = Model(state);
  for (auto _ : state) model.CloseAll();
}

void ToggleOne(benchmark::State& state) {
  TTreeListModel model = Model(state);
  model.OpenAll();
  for (auto _ : state) model.Toggle(0);
}

/// One page further, and what the drawing asks of each of its lines.
void PageDown(benchmark::State& state) {
  TTreeListModel model = Model(state);
  model.OpenAll();
  for (auto _ : state) {
    model.Press(TTreeKey::PageDown, kPageSize);
    if (model.CurrentLine() + kPageSize >= model.LineCount()) model.Press(TTreeKey::Home, kPageSize);
    for (std::size_t i = 0; i < kPageSize; ++i) {
      const std::size_t node = model.NodeAt(model.CurrentLine() + i);
      benchmark::DoNotOptimize(model.Record(node) + static_cast<std::size_t>(model.Level(node)));
    }
  }
}

BENCHMARK(Attach)->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(OpenAll)->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(CloseAll)->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(ToggleOne)->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(PageDown)->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);

}  // namespace
