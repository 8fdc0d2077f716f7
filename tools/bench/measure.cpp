#include "tools/bench/measure.h"

#include <io.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/windows/fixtures/imports.h"

namespace qvx::bench {

namespace {

int overLimit = 0;
std::FILE* table = nullptr;
unsigned paused_ms = 0;

void WINAPI countPause(DWORD milliseconds) {
  paused_ms += milliseconds;
}

// The quantile of the values for that share.
double quantileOf(std::vector<double>& values, double share) {
  const auto place =
      values.begin() + static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size()));
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

double fastestTenthOf(std::vector<double>& times) {
  return quantileOf(times, 0.1);
}

// Records the pauses of an operation.
unsigned pausesOf(const Operation& operation) {
  paused_ms = 0;
  operation();
  return paused_ms;
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
  std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);  // as for a file, not by the character
}

void printHead() {
  std::fprintf(table, "%-44s %12s %12s %8s %8s\n", "fastest tenth; ratio: the rounds' median",
               "ours", "bare calls", "ratio", "limit");
  std::fflush(table);
}

void compare(const Comparison& comparison, const Operation& ours, const Operation& bare) {
  const tests::ReplacedImport sleep("Sleep", &countPause, nullptr);
  const unsigned ours_ms = pausesOf(ours), bare_ms = pausesOf(bare);
  if (ours_ms != bare_ms) {
    throw std::runtime_error(std::string(comparison.operation) + ": pauses of " +
                             std::to_string(ours_ms) + " ms against " + std::to_string(bare_ms));
  }
  compareTimes(
      comparison, [&] { return timeOf_us(ours); }, [&] { return timeOf_us(bare); });
}

void compareTimes(const Comparison& comparison, const Times& ours, const Times& bare) {
  std::vector<double> oursTimes, bareTimes, ratios;
  for (int round = 0; round < comparison.rounds; ++round) {
    const bool oursFirst = round % 2 == 0;
    if (oursFirst) oursTimes.push_back(ours());
    bareTimes.push_back(bare());
    if (!oursFirst) oursTimes.push_back(ours());
    ratios.push_back(oursTimes.back() / bareTimes.back());
  }
  const double ratio = quantileOf(ratios, 0.5);
  std::fprintf(table, "%-44s %12.2f %12.2f %8.3f", comparison.operation, fastestTenthOf(oursTimes),
               fastestTenthOf(bareTimes), ratio);
  endRow(ratio, comparison.limit);
}

void printValue(const char* operation, double value, double limit) {
  std::fprintf(table, "%-44s %12.4g %12s %8s", operation, value, "", "");
  endRow(value, limit);
}

double fastest_us(int rounds, int calls, const std::function<void(int)>& operation) {
  std::vector<double> times;
  for (int i = 0; i < rounds; ++i) {
    times.push_back(timeOf_us([&] {
      for (int call = 0; call < calls; ++call) operation(call);
    }));
  }
  return fastestTenthOf(times) / calls;
}

double timeOf_us(const Operation& operation) {
  LARGE_INTEGER frequency, start, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  operation();
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - start.QuadPart) * 1e6 /
         static_cast<double>(frequency.QuadPart);
}

int rowsOverLimit() {
  return overLimit;
}

}  // namespace qvx::bench
