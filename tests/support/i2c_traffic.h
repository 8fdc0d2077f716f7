// What a journal says of a bridge camera's I2C bus, on one line: the transfers of one-shot firmware
// and the pauses between them, without the bus selections. "r62.CA" reads register 0xCA of slave
// 0x62, "w62.08=02" writes one, "w46=6E" writes without a register, "p50" is a pause.
#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace qvx::tests {

// The request: 0, slave, speed, length and bytes of the sub-address, length and bytes of the data.
inline std::string i2cTransferIn(char verb, const std::string& request) {
  std::istringstream stream(request);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  const auto bytesAfter = [&words](std::size_t place) {
    std::string text;
    std::size_t count = std::stoul(words.at(place), nullptr, 16);
    while (count-- > 0) text += words.at(++place);
    return text;
  };
  const std::string sub = bytesAfter(3);
  std::string text = verb + words.at(1) + (sub.empty() ? "" : '.' + sub);
  return verb == 'r' ? text : text + '=' + bytesAfter(4 + sub.size() / 2);
}

inline std::string i2cTrafficIn(const std::vector<std::string>& journal) {
  const std::string read = "set 5A215226/20: ", write = "set 5A215226/21: ", pause = "pause ";
  std::string traffic;
  for (const std::string& line : journal) {
    std::string step;
    if (line.starts_with(pause)) step = 'p' + line.substr(pause.size());
    if (line.starts_with(read)) step = i2cTransferIn('r', line.substr(read.size()));
    if (line.starts_with(write)) step = i2cTransferIn('w', line.substr(write.size()));
    if (!step.empty()) traffic += (traffic.empty() ? "" : " ") + step;
  }
  return traffic;
}

}  // namespace qvx::tests
