// Paths as texts.
#pragma once

#include <string>

namespace OSAL {

/// Text up to and with the last separator ("/" or "\"); empty when there is none.
std::string DirectoryOf(const std::string& path);
/// Text behind the last separator.
std::string FileNameOf(const std::string& path);
/// Text before the last ".".
std::string StemOf(const std::string& name);
/// Every "/" becomes "\", then each doubled "\" one.
void NormalizePath(std::string& path);
/// Directory of the running executable, with its closing separator.
int GetModuleDirectory(std::string& out);
/// A path with "\\" separators as this system's files want it. All functions that open files take native paths.
std::string NativePath(std::string path);

}  // namespace OSAL
