#include "simulator/fronts/registry_key.h"

namespace qvx::simulator {

RegistryKey RegistryKey::open(const std::wstring& path, REGSAM access) {
  HKEY key = nullptr;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, access, &key);
  return RegistryKey(key);
}

RegistryKey RegistryKey::create(const std::wstring& path) {
  HKEY key = nullptr;
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                  nullptr);
  return RegistryKey(key);
}

void RegistryKey::remove(const std::wstring& path) {
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
}

RegistryKey::~RegistryKey() {
  if (key_ != nullptr) RegCloseKey(key_);
}

std::vector<std::wstring> RegistryKey::children() const {
  constexpr DWORD longestName = 256;
  std::vector<std::wstring> names;
  wchar_t name[longestName];
  for (DWORD i = 0;; ++i) {
    DWORD length = longestName;
    if (RegEnumKeyExW(key_, i, name, &length, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS) {
      return names;
    }
    names.emplace_back(name, length);
  }
}

std::optional<std::wstring> RegistryKey::text(const wchar_t* name) const {
  DWORD size = 0;
  if (RegGetValueW(key_, nullptr, name, RRF_RT_REG_SZ, nullptr, nullptr, &size) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::wstring value(size / sizeof(wchar_t), L'\0');
  if (RegGetValueW(key_, nullptr, name, RRF_RT_REG_SZ, nullptr, value.data(), &size) !=
      ERROR_SUCCESS) {
    return std::nullopt;
  }
  return std::wstring(value.c_str());
}

bool RegistryKey::setText(const wchar_t* name, const std::wstring& value) {
  return set(name, REG_SZ, value.c_str(), (value.size() + 1) * sizeof(wchar_t));
}

std::uint64_t RegistryKey::number(const wchar_t* name) const {
  std::uint64_t value = 0;
  DWORD size = sizeof value;
  RegGetValueW(key_, nullptr, name, RRF_RT_REG_QWORD, nullptr, &value, &size);
  return value;
}

bool RegistryKey::setNumber(const wchar_t* name, std::uint64_t value) {
  return set(name, REG_QWORD, &value, sizeof value);
}

bool RegistryKey::bytes(const wchar_t* name, void* value, std::size_t size) const {
  DWORD found = static_cast<DWORD>(size);
  return RegGetValueW(key_, nullptr, name, RRF_RT_REG_BINARY, nullptr, value, &found) ==
             ERROR_SUCCESS &&
         found == size;
}

bool RegistryKey::setBytes(const wchar_t* name, const void* value, std::size_t size) {
  return set(name, REG_BINARY, value, size);
}

void RegistryKey::forget(const wchar_t* name) {
  RegDeleteValueW(key_, name);
}

bool RegistryKey::set(const wchar_t* name, DWORD type, const void* value, std::size_t size) {
  return key_ != nullptr && RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(value),
                                           static_cast<DWORD>(size)) == ERROR_SUCCESS;
}

}  // namespace qvx::simulator
