// Zip files whose entries are stored as they are.
#pragma once

#include <string>
#include <vector>

namespace qvxctl {

struct ZipEntry {
  std::string name, content;
};

std::string zipOf(const std::vector<ZipEntry>& entries);

}  // namespace qvxctl
