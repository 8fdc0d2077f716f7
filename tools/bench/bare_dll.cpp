// The minimum cost of loading QVX64.dll: this DLL links the whole platform part, hence the same
// imports and initialisation, and the parts of the C++ runtime that jsoncpp and the computations
// need. It calls none of it by itself.
#include <json/reader.h>
#include <json/value.h>

#include <cctype>
#include <cmath>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

extern "C" __declspec(dllexport) double useTheRuntime(const char* text) {
  static std::mutex guard;
  static Json::Value root;
  try {
    std::jthread([&] {
      const std::lock_guard<std::mutex> lock(guard);
      Json::Reader().parse(text, root);
    }).join();
    return std::pow(std::tolower(*text) + std::stol(text), std::stoll(root.asString()));
  } catch (const std::exception&) {
    return 0;
  }
}
