// FormatJsonNumber against the classic-locale stream it replaces, and EscapeJsonString, on the
// same inputs in one run. Compare the "per value" times of the two number benchmarks.
#include <benchmark/benchmark.h>

#include <locale>
#include <random>
#include <sstream>
#include <vector>

#include "base/wide_text.h"
#include "graph/json_text.h"

namespace {

// Values like the ones a package holds: colours, amounts, distances, a few large and tiny ones.
std::vector<float> PackageLikeFloats() {
  std::mt19937 random(42);
  std::uniform_real_distribution<float> unit(0.0f, 1.0f);
  std::uniform_real_distribution<float> scene(-5000.0f, 5000.0f);
  std::vector<float> values;
  for (int i = 0; i < 4096; ++i) {
    switch (i % 4) {
      case 0: values.push_back(unit(random)); break;
      case 1: values.push_back(scene(random)); break;
      case 2: values.push_back(static_cast<float>(i % 10)); break;
      default: values.push_back(unit(random) * 1e-6f); break;
    }
  }
  return values;
}

void BM_FormatJsonNumber(benchmark::State& state) {
  std::vector<float> values = PackageLikeFloats();
  std::u16string out;
  for (auto _ : state) {
    for (float value : values) {
      out.clear();
      orvane::AppendJsonNumber(out, value);
      benchmark::DoNotOptimize(out.data());
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}
BENCHMARK(BM_FormatJsonNumber);

void BM_StreamReference(benchmark::State& state) {
  std::vector<float> values = PackageLikeFloats();
  for (auto _ : state) {
    for (float value : values) {
      std::ostringstream stream;
      stream.imbue(std::locale::classic());
      stream.precision(6);
      stream << value;
      std::u16string out = orvane::AsciiToWide(stream.str());
      benchmark::DoNotOptimize(out.data());
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}
BENCHMARK(BM_StreamReference);

void BM_EscapeJsonString(benchmark::State& state) {
  const std::u16string name =
      u"C:\\Projects\\Loft\\maps\\oak_diffuse \"v2\"\t\u00e9\u6728 final.jpg";
  for (auto _ : state) {
    std::u16string escaped = orvane::EscapeJsonString(name);
    benchmark::DoNotOptimize(escaped.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(name.size() * 2));
}
BENCHMARK(BM_EscapeJsonString);

}  // namespace
