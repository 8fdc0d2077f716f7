// Operations that differ by model family, as tables: the first row whose family a product id
// belongs to decides. The order counts, since some families are asked for on the wire.
#pragma once

#include <cstddef>

namespace qvx {

using Family = int (*)(int pid);

// A plain range of product ids, asked for without the wire.
template <int first, int last>
int within(int pid) {
  return pid >= first && pid <= last ? 1 : 0;
}

template <class Operation>
struct FamilyRow {
  Family belongs;
  Operation* run;
};

// Null for a product id of no row.
template <class Row, std::size_t count>
const Row* rowFor(int pid, const Row (&rows)[count]) {
  for (const Row& row : rows) {
    if (row.belongs(pid)) return &row;
  }
  return nullptr;
}

}  // namespace qvx
