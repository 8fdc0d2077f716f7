// A device list with libusbK's cursor: it starts before the first record, and starts over after the
// last one.
#pragma once

#include <cstddef>
#include <vector>

namespace qvx::simulator {

template <class Record>
class Usb3DeviceList {
 public:
  explicit Usb3DeviceList(std::vector<Record> records) : records_(std::move(records)) {}

  std::size_t size() const { return records_.size(); }

  // Null after the last one.
  Record* next() {
    const bool pastEnd = cursor_ == records_.size();
    Record* const record = pastEnd ? nullptr : &records_[cursor_];
    cursor_ = pastEnd ? 0 : cursor_ + 1;
    return record;
  }

  // The first record that satisfies the predicate; null for none. Does not move the cursor.
  template <class Condition>
  Record* find(Condition condition) {
    for (Record& record : records_) {
      if (condition(record)) return &record;
    }
    return nullptr;
  }

 private:
  std::vector<Record> records_;
  std::size_t cursor_ = 0;
};

}  // namespace qvx::simulator
