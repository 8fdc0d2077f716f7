#include "tests/bench/measure.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace qvx::bench {

namespace {

int overLimit = 0;

double timeOf_us(const std::function<void()>& operation) {
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

}  // namespace

double median_us(int rounds, const std::function<void()>& operation) {
  std::vector<double> times;
  for (int i = 0; i < rounds; ++i) times.push_back(timeOf_us(operation));
  return medianOf(times);
}

Pair medians_us(int rounds, const std::function<void()>& ours, const std::function<void()>& bare) {
  std::vector<double> oursTimes, bareTimes;
  for (int i = 0; i < rounds; ++i) {
    oursTimes.push_back(timeOf_us(ours));
    bareTimes.push_back(timeOf_us(bare));
  }
  return {medianOf(oursTimes), medianOf(bareTimes)};
}

void printHead() {
  std::printf("%-44s %12s %12s %7s %6s\n", "operation (median)", "ours, us", "bare, us", "ratio",
              "limit");
}

void printRow(const char* operation, Pair times, double limit) {
  const double ratio = times.ours_us / times.bare_us;
  const bool over = limit != 0 && ratio > limit;
  if (over) ++overLimit;
  std::printf("%-44s %12.2f %12.2f %7.3f", operation, times.ours_us, times.bare_us, ratio);
  if (limit != 0) std::printf(" %6.2f%s", limit, over ? "  OVER" : "");
  std::printf("\n");
}

void printRow(const char* operation, double ours_us) {
  std::printf("%-44s %12.4f\n", operation, ours_us);
}

int rowsOverLimit() {
  return overLimit;
}

}  // namespace qvx::bench
