#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "output.h"
#include "qvx64/api.h"
#include "stills.h"
#include "text.h"

namespace qvxctl {

namespace {

namespace files = std::filesystem;

// The library takes a name's characters as bytes: one above 255 cannot be said to it.
std::string nameForLibrary(const files::path& path) {
  constexpr std::size_t longest = 255;
  const std::wstring wide = path.wstring();
  const bool fits = std::ranges::all_of(wide, [](wchar_t character) { return character < 0x100; });
  if (fits && wide.size() <= longest) return {wide.begin(), wide.end()};
  throw Failure(ExitCode::badUsage,
                "snapshot: the file's name is too long, or has characters beyond ISO 8859-1");
}

// The file that is written first.
files::path partOf(files::path path) {
  return path += L".part";
}

// What is left of it goes in the end.
struct Part {
  explicit Part(const files::path& whole) : path(partOf(whole)) { remove(); }
  ~Part() { remove(); }
  Part(const Part&) = delete;
  Part& operator=(const Part&) = delete;

  void remove() const {
    std::error_code ignored;
    files::remove(path, ignored);
  }

  const files::path path;
};

// The picture takes its name, and the place of an earlier one, only when it is whole.
void save(const files::path& path) {
  const Part part(path);
  if (!GetWiFiImage(nameForLibrary(part.path).c_str())) {
    throw Failure(ExitCode::outputLost, "cannot create " + utf8(part.path.wstring()));
  }
  if (!isWholeJpeg(part.path)) {
    throw Failure(ExitCode::cameraFailed, "the camera sent no whole picture");
  }
  std::error_code error;
  files::rename(part.path, path, error);
  if (error) throw Failure(ExitCode::outputLost, "cannot replace " + utf8(path.wstring()));
}

}  // namespace

bool isWholeJpeg(const files::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  return content.starts_with("\xFF\xD8") && content.ends_with("\xFF\xD9");
}

void saveSnapshot(const Options& options) {
  const auto name = onlyArgument(options);
  if (!name || name->empty()) {
    throw Failure(ExitCode::badUsage, "snapshot: the name of a file is missing");
  }
  const files::path path = wide(*name);
  nameForLibrary(partOf(path));
  openWifiCamera(options);
  save(path);
  const std::uintmax_t size = files::file_size(path);
  printLine(options.json
                ? json::object({{"file", json::text(*name)}, {"bytes", json::number(size)}})
                : "Saved " + *name + ", " + std::to_string(size) + " bytes");
}

}  // namespace qvxctl
