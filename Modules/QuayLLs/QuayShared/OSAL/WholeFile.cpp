#include "OSAL/WholeFile.h"

namespace OSAL {

Outcome<> WriteWholeFile(const std::filesystem::path& path, std::string_view content) {
    auto file = WholeFile::Begin(path);
    if (!file) return file.Why();
    if (auto written = file->Write(content); !written) return written;
    return file->Commit();
}

bool IsLeftOverPart(std::string_view name) {
    return name.starts_with('.') && name.ends_with(".part");
}

}  // namespace OSAL
