#include "zip.h"

#include <cstdint>
#include <initializer_list>

namespace qvxctl {

namespace {

std::uint32_t crc32(const std::string& content) {
  constexpr std::uint32_t polynomial = 0xEDB88320;  // with its lowest term first
  std::uint32_t remainder = ~0U;
  for (const char character : content) {
    remainder ^= static_cast<unsigned char>(character);
    for (int bit = 0; bit < 8; ++bit) {
      remainder = remainder >> 1 ^ ((remainder & 1) != 0 ? polynomial : 0);
    }
  }
  return ~remainder;
}

struct Field {
  std::size_t bytes, value;
};

void append(std::string& text, std::initializer_list<Field> fields) {
  for (Field field : fields) {
    for (; field.bytes != 0; --field.bytes, field.value >>= 8) {
      text += static_cast<char>(field.value & 0xFF);
    }
  }
}

// What a local header and an entry of the directory have in common; the date is the earliest, 1980.
void appendDescription(std::string& text, const ZipEntry& entry) {
  constexpr std::size_t neededVersion = 10, firstDay = 1 << 5 | 1;
  const std::size_t size = entry.content.size();
  append(text, {{2, neededVersion}, {2, 0}, {2, 0}, {2, 0}, {2, firstDay}});
  append(text, {{4, crc32(entry.content)}, {4, size}, {4, size}, {2, entry.name.size()}, {2, 0}});
}

}  // namespace

std::string zipOf(const std::vector<ZipEntry>& entries) {
  constexpr std::size_t localHeader = 0x04034B50, directoryEntry = 0x02014B50,
                        endOfDirectory = 0x06054B50, version = 10;
  std::string zip, directory;
  for (const ZipEntry& entry : entries) {
    append(directory, {{4, directoryEntry}, {2, version}});
    appendDescription(directory, entry);
    append(directory, {{2, 0}, {2, 0}, {2, 0}, {4, 0}, {4, zip.size()}});
    directory += entry.name;
    append(zip, {{4, localHeader}});
    appendDescription(zip, entry);
    zip += entry.name + entry.content;
  }
  const std::size_t start = zip.size(), count = entries.size();
  zip += directory;
  append(zip, {{4, endOfDirectory}, {2, 0}, {2, 0}, {2, count}, {2, count}});
  append(zip, {{4, directory.size()}, {4, start}, {2, 0}});
  return zip;
}

}  // namespace qvxctl
