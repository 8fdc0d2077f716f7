// The simulated machine's disk.
#include "platform/files.h"

#include <algorithm>

#include "simulator/platform/world.h"

namespace qvx::platform {

struct FileObject {
  static constexpr simulator::OpenCounter counter = &simulator::OpenCounts::files;
  std::string& content;
};

namespace {

using simulator::world;

std::wstring folderOf(const std::wstring& path) {
  const std::size_t separator = path.find_last_of(L"\\/");
  return separator == std::wstring::npos ? L"" : path.substr(0, separator);
}

}  // namespace

FileHandle createFile(const std::wstring& path) {
  const bool exists = !path.empty() && world().folders.contains(folderOf(path));
  if (!exists || !world().grants()) return nullptr;
  world().files[path].clear();
  return world().keep(FileObject{world().files[path]});
}

FileHandle openForAppending(const std::wstring& path) {
  if (!world().folders.contains(folderOf(path)) || !world().grants()) return nullptr;
  return world().keep(FileObject{world().files[path]});
}

// Never takes simulated time: its caller holds a lock that the simulated clock does not know of,
// and whoever waited for that would keep the clock from moving.
bool appendLine(FileHandle file, const void* data, std::uint32_t size) {
  auto& room = world().diskRoom;
  const std::size_t written = room ? std::min<std::size_t>(*room, size) : size;
  if (room) *room -= written;
  file->content.append(static_cast<const char*>(data), written);
  return written == size;
}

bool writeFile(FileHandle file, const void* data, std::uint32_t size) {
  return world().grants() && appendLine(file, data, size);
}

void closeFile(FileHandle file) {
  world().drop<FileObject>(file);
}

}  // namespace qvx::platform
