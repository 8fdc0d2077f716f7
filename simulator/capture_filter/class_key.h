// Registry keys beneath the system's COM classes.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qvx::simulator {

// Reads nothing and writes nothing when it could not be opened.
class ClassKey {
 public:
  // Paths start with a class: "{...}\Instance".
  static ClassKey open(const std::wstring& path, REGSAM access = KEY_READ);
  static ClassKey create(const std::wstring& path);
  static void remove(const std::wstring& path);

  ~ClassKey();
  ClassKey(ClassKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
  ClassKey& operator=(const ClassKey&) = delete;

  std::vector<std::wstring> children() const;

  std::optional<std::wstring> text(const wchar_t* name) const;
  bool setText(const wchar_t* name, const std::wstring& value);

  // 0 when there is none.
  std::uint64_t number(const wchar_t* name) const;
  bool setNumber(const wchar_t* name, std::uint64_t value);

  void forget(const wchar_t* name);

 private:
  explicit ClassKey(HKEY key) : key_(key) {}
  bool set(const wchar_t* name, DWORD type, const void* value, std::size_t size);

  HKEY key_;
};

}  // namespace qvx::simulator
