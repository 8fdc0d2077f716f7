// Keys of the registry's machine-wide part.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace qvx::simulator {

// Reads nothing and writes nothing when it could not be opened.
class RegistryKey {
 public:
  static RegistryKey open(const std::wstring& path, REGSAM access = KEY_READ);
  static RegistryKey create(const std::wstring& path);
  static void remove(const std::wstring& path);

  ~RegistryKey();
  RegistryKey(RegistryKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
  RegistryKey& operator=(const RegistryKey&) = delete;

  std::vector<std::wstring> children() const;

  std::optional<std::wstring> text(const wchar_t* name) const;
  bool setText(const wchar_t* name, const std::wstring& value);

  // 0 when there is none.
  std::uint64_t number(const wchar_t* name) const;
  bool setNumber(const wchar_t* name, std::uint64_t value);

  // False unless the value has exactly that size.
  bool bytes(const wchar_t* name, void* value, std::size_t size) const;
  bool setBytes(const wchar_t* name, const void* value, std::size_t size);

  void forget(const wchar_t* name);

 private:
  explicit RegistryKey(HKEY key) : key_(key) {}
  bool set(const wchar_t* name, DWORD type, const void* value, std::size_t size);

  HKEY key_;
};

}  // namespace qvx::simulator
