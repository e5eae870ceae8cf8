// Files that are written whole or not at all.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "OSAL/Outcome.h"

namespace OSAL {

/// A file that is being written beside its place, without a name or under a hidden one, and takes its place when it is
/// whole. Until then the old file stays as it was; whatever ends the process leaves the old file or the new one, and a
/// hidden part that a killed writer left goes with the next writer of the same file. Mode and owner of the old file are
/// kept as far as the process may. Of two writers of one name the last to commit wins.
///
/// A link, symbolic or hard, is refused by the open that writes; the links that name this process's own streams, such
/// as /dev/stdout, are none. A device or a pipe is written to as the pieces come and is never replaced; a pipe without
/// a reader is refused, and one whose reader stands still for 10 seconds fails the write.
///
/// All reasons read "can't write '<path>': <why>". Thread: one at a time.
class WholeFile {
public:
    static Outcome<WholeFile> Begin(const std::filesystem::path& path);
    /// Drops what wasn't committed.
    ~WholeFile();
    WholeFile(WholeFile&&) noexcept;
    WholeFile& operator=(WholeFile&&) noexcept;

    Outcome<> Write(std::string_view piece);
    /// Puts the file in its place, on the disk when this returns. Nothing can be written afterwards.
    /// A write that failed before fails this too.
    Outcome<> Commit();

private:
    struct State;
    explicit WholeFile(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

/// The file in one go.
Outcome<> WriteWholeFile(const std::filesystem::path& path, std::string_view content);

/// True for the name of a file that a writer which was killed left behind: ".NAME.tarnN.part". Never input.
bool IsLeftOverPart(std::string_view name);

}  // namespace OSAL
