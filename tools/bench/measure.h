// Compares two ways to do the same thing on a machine that may be busy; each comparison is a row of
// one table.
#pragma once

#include <functional>

namespace qvx::bench {

using Operation = std::function<void()>;
using Times = std::function<double()>;  // runs once and returns the time taken in microseconds

// An operation of the library and the bare system calls behind it. They run alternately, each first
// in every other round, so that other load affects both alike; the median of the rounds' ratios
// counts. The times shown are those of the fastest tenth.
struct Comparison {
  const char* operation;
  int rounds;
  double limit;  // the maximum for ours, as a multiple of the bare calls
};

// Reserves standard output for the table: discards what the library prints about USB 3 cameras.
void openTable();

void printHead();

// Pauses are skipped while measuring; both sides must request the same ones and print the same.
void compare(const Comparison& comparison, const Operation& ours, const Operation& bare);

// For times that are measured elsewhere.
void compareTimes(const Comparison& comparison, const Times& ours, const Times& bare);

// A row for an operation without system calls, with an absolute limit in the same unit.
void printValue(const char* operation, double value, double limit);

// The time of one call in microseconds, if a measurement makes `calls` of them.
double fastest_us(int rounds, int calls, const std::function<void(int call)>& operation);

double timeOf_us(const Operation& operation);
int rowsOverLimit();

}  // namespace qvx::bench
