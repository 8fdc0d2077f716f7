#include "options.h"

#include <windows.h>

#include <algorithm>
#include <charconv>

#include "failure.h"
#include "numbers.h"
#include "text.h"

namespace qvxctl {

namespace {

double secondsIn(const std::string& text) {
  const double seconds = decimalNumber("--seconds", text);
  constexpr double longest = 1e9;  // about 32 years: far inside what a clock can count
  if (seconds >= 0 && seconds <= longest) return seconds;
  throw Failure(ExitCode::badUsage, "--seconds: " + text + " is not between 0 and 1000000000");
}

int indexIn(const std::string& text) {
  const int index = wholeNumber("--device", text);
  if (index == QVX_WIFI_CAMERA || (index >= QVX_CHOOSE && index < firstIndexBeyondUsb))
    return index;
  throw Failure(ExitCode::badUsage, "--device: " + text + " is none of -1, 0 to 7 and 90");
}

// Read by the library at each Init and at its first use.
constexpr wchar_t addressVariable[] = L"QVX64_WIFI_CAMERA";
constexpr char usualPort[] = ":8080";

// A decimal number up to `most`, without needless zeros, taken off the front.
bool takeNumber(std::string_view& text, unsigned least, unsigned most) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || number < least || number > most) return false;
  const auto length = static_cast<std::size_t>(end - text.data());
  if (length > 1 && text.front() == '0') return false;
  text.remove_prefix(length);
  return true;
}

bool takeSign(std::string_view& text, char sign) {
  if (!text.starts_with(sign)) return false;
  text.remove_prefix(1);
  return true;
}

bool isAddress(std::string_view text) {
  constexpr int parts = 4;
  for (int part = 0; part < parts; ++part) {
    if (part != 0 && !takeSign(text, '.')) return false;
    if (!takeNumber(text, 0, 255)) return false;
  }
  return text.empty() || (takeSign(text, ':') && takeNumber(text, 1, 65535) && text.empty());
}

void useAddress(const std::string& text) {
  if (!isAddress(text)) {
    throw Failure(ExitCode::badUsage, "--camera: " + quoted(text) + " is no IPV4[:PORT]");
  }
  SetEnvironmentVariableW(addressVariable, wide(text).c_str());
}

void useTrace(const std::string& text) {
  const std::wstring name = wide(text);
  std::wstring path(GetFullPathNameW(name.c_str(), 0, nullptr, nullptr), L'\0');
  const auto room = static_cast<DWORD>(path.size());
  if (room == 0 || GetFullPathNameW(name.c_str(), room, path.data(), nullptr) == 0) {
    throw Failure(ExitCode::badUsage, "--trace: " + quoted(text) + " is no name of a file");
  }
  SetEnvironmentVariableW(L"QVX64_TRACE", path.c_str());
}

constexpr Option knownOptions[] = {
    {"--device", "N", "",
     "the camera: 0 to 7, 90 for Wi-Fi, -1 (default) to let the library choose",
     [](Options& all, const std::string& value) { all.device = indexIn(value); }},
    {"--camera", "IPV4[:PORT]", "",
     "where the Wi-Fi camera is; chooses it unless --device says otherwise",
     [](Options& all, const std::string& value) {
       useAddress(value);
       all.wifiCamera = true;
     }},
    {"--trace", "FILE", "", "the library writes what passes between it and the camera to a file",
     [](Options&, const std::string& value) { useTrace(value); }},
    {"--no-serials", "", "report", "leave out the serial numbers in device paths",
     [](Options& all, const std::string&) { all.withoutSerials = true; }},
    {"--json", "", "", "print JSON: one object, or one per line from watch and selftest",
     [](Options& all, const std::string&) { all.json = true; }},
    {"--seconds", "S", "watch", "stop after S seconds instead of at Ctrl-C",
     [](Options& all, const std::string& value) { all.seconds = secondsIn(value); }},
    {"--init", "", "call", "choose the camera and run Init before the call",
     [](Options& all, const std::string&) { all.initFirst = true; }},
    {"--help", "", "", "print this help; after call, the exports and their arguments",
     [](Options& all, const std::string&) { all.help = true; }},
    {"--version", "", "", "print the version",
     [](Options& all, const std::string&) { all.version = true; }},
};

const Option& optionNamed(const std::string& name) {
  const auto* const found = std::ranges::find_if(
      knownOptions, [&name](const Option& option) { return option.name == name; });
  if (found == std::end(knownOptions)) {
    throw Failure(ExitCode::badUsage, "unknown option " + quoted(name) + "; see qvxctl --help");
  }
  return *found;
}

// Reads the words one after the other into the options.
class Parser {
 public:
  explicit Parser(const std::vector<std::string>& words) : words_(words) {}

  Options parse() {
    while (position_ < words_.size()) take(words_[position_++]);
    for (const Option* option : given_) checkCommandOf(*option);
    return parsed_;
  }

 private:
  void take(const std::string& word) {
    if (onlyArguments_ || !word.starts_with("--")) {
      takeArgument(word);
    } else if (word == "--") {
      onlyArguments_ = true;
    } else {
      takeOption(word);
    }
  }

  void takeArgument(const std::string& word) {
    if (parsed_.command.empty()) {
      parsed_.command = word;
    } else {
      parsed_.arguments.push_back(word);
    }
  }

  void takeOption(const std::string& word) {
    const std::size_t equals = word.find('=');
    const Option& option = optionNamed(word.substr(0, equals));
    std::optional<std::string> value;
    if (equals != std::string::npos) value = word.substr(equals + 1);
    option.apply(parsed_, option.value.empty() ? withoutValue(option, value)
                                               : valueOf(option, std::move(value)));
    given_.push_back(&option);
  }

  std::string withoutValue(const Option& option, const std::optional<std::string>& value) {
    if (!value) return {};
    throw Failure(ExitCode::badUsage, std::string(option.name) + " takes no value");
  }

  std::string valueOf(const Option& option, std::optional<std::string> attached) {
    if (attached) return *std::move(attached);
    if (position_ < words_.size()) return words_[position_++];
    throw Failure(ExitCode::badUsage,
                  std::string(option.name) + " needs a value: " + std::string(option.value));
  }

  void checkCommandOf(const Option& option) const {
    if (option.command.empty() || option.command == parsed_.command) return;
    throw Failure(ExitCode::badUsage, std::string(option.name) + " is an option of " +
                                          std::string(option.command) + " only");
  }

  const std::vector<std::string>& words_;
  std::size_t position_ = 0;
  bool onlyArguments_ = false;
  Options parsed_;
  std::vector<const Option*> given_;
};

}  // namespace

std::span<const Option> optionTable() {
  return knownOptions;
}

Options parseOptions(const std::vector<std::string>& words) {
  return Parser(words).parse();
}

std::string wifiCameraAddress() {
  wchar_t given[64] = {};
  const DWORD length = GetEnvironmentVariableW(addressVariable, given, std::size(given));
  if (length == 0) return QVXCTL_CAMERA_ADDRESS + std::string(usualPort);
  if (length >= std::size(given)) return "QVX64_WIFI_CAMERA, which is no address";
  const std::string address = utf8(given);
  return address.find(':') == std::string::npos ? address + usualPort : address;
}

std::optional<std::string> onlyArgument(const Options& options) {
  if (options.arguments.empty()) return std::nullopt;
  if (options.arguments.size() == 1) return options.arguments.front();
  throw Failure(ExitCode::badUsage,
                options.command + ": unexpected argument " + quoted(options.arguments[1]));
}

void expectArguments(const Options& options, const std::string& what, std::size_t count) {
  const auto& arguments = options.arguments;
  if (arguments.size() < count) throw Failure(ExitCode::badUsage, what + ": a value is missing");
  if (arguments.size() > count) {
    throw Failure(ExitCode::badUsage, what + ": unexpected argument " + quoted(arguments[count]));
  }
}

void refuseName(const std::string& what, const std::string& name,
                const std::vector<std::string_view>& known) {
  std::string choice;
  for (const std::string_view one : known) {
    if (!choice.empty()) choice += one == known.back() ? " or " : ", ";
    choice += one;
  }
  throw Failure(ExitCode::badUsage, what + ": " + quoted(name) + " is not " + choice);
}

}  // namespace qvxctl
