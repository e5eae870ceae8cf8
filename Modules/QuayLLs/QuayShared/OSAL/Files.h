// Files and folders. A path with a zero byte in it names nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "OSAL/Errors.h"

namespace OSAL {

/// True when the path exists and is a symbolic link, or a regular file with more than one hard link. Folders always
/// have several and are no links.
bool IsLink(const std::string& path);
/// @param extra `NoLink` refuses links on both sides; `Private` is for the copy
int CopyFile(const std::string& from, const std::string& to, unsigned extra = 0);
/// Names in the folder in the order the system gives them, without ".", "..", "result.csv" and what a killed writer
/// left behind. Empty when it can't be read.
std::vector<std::string> ListDirectory(const std::string& folder);
bool DirectoryExists(const std::string& path);
/// Makes the folder and its missing parents; true when it stands there afterwards.
bool CreateDirectory(const std::string& path);
/// False for a folder. @throws OSAL::exception when the path is a symbolic link to anything but a folder
bool FileExists(const std::string& path);
enum class Access { Read, List, Fill };
/// Why this process may not read the file, list the folder or put files into it: the system's words; empty when it may.
std::string AccessTrouble(const std::string& path, Access access);
/// Puts `from` in the place of `to` in one step; `to` stays as it was on failure.
int ReplaceFile(const std::string& from, const std::string& to);

// Files. A handle below 0 is invalid: writes to it fail, and closing it does nothing.
using FileHandle = std::intptr_t;
constexpr FileHandle InvalidFile = -1;
enum FileMode : unsigned { ReadOnly = 1, ReadWrite = 2, Append = 4, NoLink = 8, Private = 16 };
/// Never waits: a pipe gives `InvalidFile`, as does a folder.
/// @param mode one or several of `FileMode`, of the first three at least one; with `NoLink` a file that is a symbolic
///             link or has several names gives `InvalidFile`, whatever it has become since anybody looked; with
///             `Private` the file becomes readable and writable for its owner alone, when that is this user
/// @param openExisting false creates the file or empties it; `Append` opens it always
FileHandle OpenFile(const std::string& path, unsigned mode, bool openExisting);
/// Up to `size` bytes from `position` on; fewer only at the file's end. `Failure` for what can't be read.
int ReadFile(FileHandle file, std::uint64_t position, void* data, std::size_t size, std::size_t& got);
/// Bytes in the file now.
int FileSize(FileHandle file, std::uint64_t& size);
/// All bytes or `Failure`.
int WriteFile(FileHandle file, const void* data, std::size_t size, std::size_t& written);
/// The same from `position` on, over what stands there; where the next `WriteFile` goes stays as it was.
int WriteFileAt(FileHandle file, std::uint64_t position, const void* data, std::size_t size);
void CloseFile(FileHandle file);

}  // namespace OSAL
