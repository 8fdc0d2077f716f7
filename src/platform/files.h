// Files that the library writes.
#pragma once

#include <cstdint>
#include <string>

namespace qvx::platform {

struct FileObject;
using FileHandle = FileObject*;

// Creates a file, or empties the one there is, for writing; others may read and write it meanwhile.
// A relative path starts from the process's current folder. Null when it cannot be created.
FileHandle createFile(const std::wstring& path);

// Appends the bytes. False when not all of them could be written.
bool writeFile(FileHandle file, const void* data, std::uint32_t size);

void closeFile(FileHandle file);

}  // namespace qvx::platform
