// Medians of two ways to do the same thing, measured side by side.
#pragma once

#include <functional>

namespace qvx::bench {

// Microseconds of one call: the median of so many.
double median_us(int rounds, const std::function<void()>& operation);

struct Pair {
  double ours_us, bare_us;
};

// The two in turn, so that whatever else the machine does meets both.
Pair medians_us(int rounds, const std::function<void()>& ours, const std::function<void()>& bare);

// Prints the table's head, and a row each; a limit of 0 promises nothing. Rows over their limit are
// counted.
void printHead();
void printRow(const char* operation, Pair times, double limit);
void printRow(const char* operation, double ours_us);
int rowsOverLimit();

}  // namespace qvx::bench
