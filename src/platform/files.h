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

// Opens a file for appending, creating it if need be; others may read, write and delete it
// meanwhile. Null when it cannot be opened.
FileHandle openForAppending(const std::wstring& path);

// Appends a whole line to a file opened so: lines of several processes do not mix. False when it
// could not be written, also when another program has locked the file.
bool appendLine(FileHandle file, const void* data, std::uint32_t size);

// Appends the bytes. False when not all of them could be written.
bool writeFile(FileHandle file, const void* data, std::uint32_t size);

void closeFile(FileHandle file);

}  // namespace qvx::platform
