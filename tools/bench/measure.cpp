#include "tools/bench/measure.h"

#include <io.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace qvx::bench {

namespace {

int overLimit = 0;
std::FILE* table = nullptr;

double timeOf_us(const Operation& operation) {
  LARGE_INTEGER frequency, start, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  operation();
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - start.QuadPart) * 1e6 /
         static_cast<double>(frequency.QuadPart);
}

double medianOf(std::vector<double>& times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

void endRow(double value, double limit) {
  const bool over = value > limit;
  if (over) ++overLimit;
  std::fprintf(table, " %8.2f%s\n", limit, over ? "  OVER" : "");
  std::fflush(table);
}

}  // namespace

void openTable() {
  table = _fdopen(_dup(_fileno(stdout)), "w");
  std::freopen("NUL", "w", stdout);
}

void printHead() {
  std::fprintf(table, "%-44s %12s %12s %8s %8s\n", "median of", "ours", "bare calls", "ratio",
               "limit");
  std::fflush(table);
}

void compare(const Comparison& comparison, const Operation& ours, const Operation& bare) {
  std::vector<double> oursTimes, bareTimes;
  for (int i = 0; i < comparison.rounds; ++i) {
    oursTimes.push_back(timeOf_us(ours));
    bareTimes.push_back(timeOf_us(bare));
  }
  const double pauses_us = comparison.pauses_ms * 1000.0;
  const double ours_us = medianOf(oursTimes) - pauses_us;
  const double bare_us = medianOf(bareTimes) - pauses_us;
  std::fprintf(table, "%-44s %12.2f %12.2f %8.3f", comparison.operation, ours_us, bare_us,
               ours_us / bare_us);
  endRow(ours_us / bare_us, comparison.limit);
}

void printValue(const char* operation, double value, double limit) {
  std::fprintf(table, "%-44s %12.4g %12s %8s", operation, value, "", "");
  endRow(value, limit);
}

double median_us(int rounds, int calls, const std::function<void(int)>& operation) {
  std::vector<double> times;
  for (int i = 0; i < rounds; ++i) {
    times.push_back(timeOf_us([&] {
      for (int call = 0; call < calls; ++call) operation(call);
    }));
  }
  return medianOf(times) / calls;
}

int rowsOverLimit() {
  return overLimit;
}

}  // namespace qvx::bench
