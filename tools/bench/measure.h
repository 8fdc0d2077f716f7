// Medians of two ways to do the same thing, measured side by side, as rows of one table.
#pragma once

#include <functional>

namespace qvx::bench {

using Operation = std::function<void()>;

// An operation of the library and the bare system calls that it comes down to. They run in turn, so
// that whatever else the machine does meets both.
struct Comparison {
  const char* operation;
  int rounds;
  double limit;            // the most that ours may take, as a multiple of the bare calls
  unsigned pauses_ms = 0;  // that both make on purpose; left out of the times
};

// Keeps standard output for the table: what the library prints of USB 3 cameras goes nowhere.
void openTable();

void printHead();
void compare(const Comparison& comparison, const Operation& ours, const Operation& bare);

// A row for what calls nothing of the system, with a limit of its own in the same unit.
void printValue(const char* operation, double value, double limit);

// The median of one call, in microseconds, where a measurement makes `calls` of them.
double median_us(int rounds, int calls, const std::function<void(int call)>& operation);

int rowsOverLimit();

}  // namespace qvx::bench
