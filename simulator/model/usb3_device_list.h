// A list of USB 3 devices as libusbK's clients walk it: the cursor begins before the first record,
// and past the last one it starts over.
#pragma once

#include <cstddef>
#include <vector>

namespace qvx::simulator {

template <class Record>
class Usb3DeviceList {
 public:
  explicit Usb3DeviceList(std::vector<Record> records) : records_(std::move(records)) {}

  std::size_t size() const { return records_.size(); }

  // Null past the last one.
  Record* next() {
    const bool pastEnd = cursor_ == records_.size();
    Record* const record = pastEnd ? nullptr : &records_[cursor_];
    cursor_ = pastEnd ? 0 : cursor_ + 1;
    return record;
  }

  // The first for which that holds; null for none. The cursor stays.
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
