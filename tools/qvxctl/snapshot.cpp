#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cameras.h"
#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "qvx64/api.h"
#include "stills.h"
#include "text.h"

namespace qvxctl {

namespace {

namespace files = std::filesystem;

// The file that is written first.
files::path partOf(files::path path) {
  return path += L".part";
}

// The library takes one byte for each character of a name.
std::string nameForLibrary(const files::path& path) {
  const std::wstring wide = path.wstring();
  return {wide.begin(), wide.end()};
}

std::string notAPictureName(const std::string& name) {
  constexpr std::size_t maxLength = 255;
  const std::wstring part = partOf(wide(name)).wstring();
  if (name.empty()) return "the name of a file is missing";
  if (part.size() > maxLength) return "the name is too long";
  const bool fits = std::ranges::all_of(part, [](wchar_t character) { return character < 0x100; });
  return fits ? "" : "the name has characters beyond ISO 8859-1";
}

// The partial file, which is deleted before and after.
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

// Only a whole picture gets its name, and replaces an earlier one.
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

void defineSnapshot(CLI::App& command, const Options& options) {
  static std::string name;
  command.add_option("FILE", name)->required()->check(notAPictureName);
  command.callback([&options] {
    const files::path path = wide(name);
    openWifiCamera(options);
    save(path);
    const std::uintmax_t size = files::file_size(path);
    printResult(options, object({{"file", name}, {"bytes", Json::UInt64(size)}}),
                "Saved " + name + ", " + std::to_string(size) + " bytes");
  });
}

}  // namespace qvxctl
