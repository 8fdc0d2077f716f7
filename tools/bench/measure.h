// Two ways to do the same thing, measured side by side on a machine that may be busy with other
// work, as rows of one table.
#pragma once

#include <functional>

namespace qvx::bench {

using Operation = std::function<void()>;
using Times = std::function<double()>;  // runs once and tells how long that took, in microseconds

// An operation of the library and the bare system calls that it comes down to. They run in turn,
// each first in every other round, so that whatever else the machine does meets both: the median of
// the rounds' ratios counts. The fastest tenth of each tells how long they take.
struct Comparison {
  const char* operation;
  int rounds;
  double limit;  // the most that ours may take, as a multiple of the bare calls
};

// Keeps standard output for the table: what the library prints of USB 3 cameras goes nowhere.
void openTable();

void printHead();

// Pauses cost nothing meanwhile; both have to make the same ones, and print the same.
void compare(const Comparison& comparison, const Operation& ours, const Operation& bare);

// Where the time is taken elsewhere.
void compareTimes(const Comparison& comparison, const Times& ours, const Times& bare);

// A row for what calls nothing of the system, with a limit of its own in the same unit.
void printValue(const char* operation, double value, double limit);

// One call, in microseconds, where a measurement makes `calls` of them.
double fastest_us(int rounds, int calls, const std::function<void(int call)>& operation);

double timeOf_us(const Operation& operation);
int rowsOverLimit();

}  // namespace qvx::bench
