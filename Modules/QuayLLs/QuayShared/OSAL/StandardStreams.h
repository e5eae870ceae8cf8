// The streams that every program has from its start.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace OSAL {

enum class StandardStream { Input, Output, Error };

enum class StreamWrite { Done, ReaderGone, Failed };
/// Writes all of it, however long its reader takes.
/// @param why  the system's words for `Failed`
StreamWrite WriteStream(StandardStream stream, std::string_view text, std::string& why);
bool IsTerminal(StandardStream stream);
/// Width of the terminal in characters; 0 when it isn't one or doesn't tell.
std::size_t TerminalColumns(StandardStream stream);
/// Puts read-only null devices where streams are closed, so that no file opened later takes their place and a write to
/// a closed output still fails.
void OccupyStandardStreams();

}  // namespace OSAL
