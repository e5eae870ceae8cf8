#include "Commands/LineEditor.h"

#include <histedit.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <utility>

#include "Console/History.h"
#include "Lines/ShellHelp.h"
#include "OSAL/StandardStreams.h"
#include "PlainText.h"

namespace TarnHost {
namespace {

constexpr int historyLines = 1000;
constexpr std::size_t longestLine = 1 << 20;  // of a pipe
constexpr std::size_t longestRead = 4096;

using Got = OSAL::InputStream::Got;

void ShowCandidates(const Completion& completion, std::size_t columns) {
    const std::vector<std::string>& candidates = completion.candidates;
    std::size_t width = 0;
    for (const std::string& candidate : candidates)
        width = std::max(width, candidate.size() + 2);
    const std::size_t perRow = std::max<std::size_t>(1, columns / std::max<std::size_t>(1, width));
    std::fputc('\n', stdout);
    for (std::size_t k = 0; k < candidates.size(); ++k) {
        const bool isLast = (k + 1) % perRow == 0 || k + 1 == candidates.size();
        std::printf("%-*s%s", isLast ? 0 : static_cast<int>(width), TarnMeasure::Printable(candidates[k]).c_str(),
                    isLast ? "\n" : "");
    }
    if (completion.more > 0) std::printf("... and %zu more\n", completion.more);
    std::fflush(stdout);
}

}  // namespace

/// libedit's two objects, and what its callbacks need.
struct LineEditor::Terminal {
    Terminal(OSAL::InputStream& keys, InterruptWatch& signals, std::string file)
        : input(keys), watch(signals), historyFile(std::move(file)) {
        std::setlocale(LC_CTYPE, "");
        editor = ::el_init("tarn", stdin, stdout, stderr);
        past = ::history_init();
        ::history(past, &event, H_SETSIZE, historyLines);
        ::history(past, &event, H_SETUNIQUE, 1);
        LoadHistory();
        ::el_set(editor, EL_CLIENTDATA, this);
        ::el_set(editor, EL_EDITOR, "emacs");
        ::el_set(editor, EL_SIGNAL, 0);
        ::el_set(editor, EL_HIST, ::history, past);
        ::el_set(editor, EL_PROMPT, &Terminal::Prompt);
        ::el_set(editor, EL_GETCFN, &Terminal::GetCharacter);
        // the narrow call would copy both texts and never free them
        ::el_wset(editor, EL_ADDFN, L"tarn-complete", L"Complete keys, values and files", &Terminal::Complete);
        ::el_set(editor, EL_BIND, "^I", "tarn-complete", nullptr);
    }
    ~Terminal() {
        ::history_end(past);
        ::el_end(editor);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void LoadHistory() {
        for (const std::string& line : ReadHistory(historyFile, historyLines))
            ::history(past, &event, H_ENTER, line.c_str());
    }

    /// After each line, so that a closed terminal or a crash loses nothing.
    void Remember(const std::string& line) {
        ::history(past, &event, H_ENTER, line.c_str());
        AppendHistory(historyFile, line);
    }

    static Terminal& Of(EditLine* line) {
        void* self = nullptr;
        ::el_get(line, EL_CLIENTDATA, &self);
        return *static_cast<Terminal*>(self);
    }
    static char* Prompt(EditLine* line) { return Of(line).prompt.data(); }
    static int GetCharacter(EditLine* line, wchar_t* character);
    static unsigned char Complete(EditLine* line, int character);

    OSAL::InputStream& input;
    InterruptWatch& watch;
    std::string historyFile;
    std::string prompt;
    EditLine* editor = nullptr;
    History* past = nullptr;
    HistEvent event{};
    std::mbstate_t decoder{};
};

int LineEditor::Terminal::GetCharacter(EditLine* line, wchar_t* character) {
    Terminal& self = Of(line);
    while (true) {
        std::string byte;
        const Got got = self.input.Read(byte, 1, self.watch.AnyCame());
        if (got == Got::End) return 0;
        if (got != Got::Bytes) return -1;
        const std::size_t used = std::mbrtowc(character, byte.data(), 1, &self.decoder);
        if (used == static_cast<std::size_t>(-2)) continue;  // a character of several bytes
        if (used == static_cast<std::size_t>(-1)) {
            self.decoder = {};
            continue;
        }
        return 1;
    }
}

unsigned char LineEditor::Terminal::Complete(EditLine* line, int) {
    const LineInfo* info = ::el_line(line);
    const std::string before(info->buffer, info->cursor);
    const Completion completion = TarnHost::Complete(before);
    if (completion.candidates.empty()) return CC_ERROR;
    const auto blank = before.find_last_of(" \t");
    const std::size_t word = before.size() - (blank == std::string::npos ? 0 : blank + 1);
    std::string text = completion.start;
    const bool isWhole = completion.candidates.size() == 1 && !text.ends_with('/');
    if (isWhole) text += ' ';
    if (text.size() > word || isWhole) {
        ::el_deletestr(line, static_cast<int>(word));
        return ::el_insertstr(line, text.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
    }
    int columns = 80;
    if (::el_get(line, EL_GETTC, "co", &columns) != 0) columns = 80;
    ShowCandidates(completion, static_cast<std::size_t>(std::max(columns, 20)));
    return CC_REDISPLAY;
}

LineEditor::LineEditor(InterruptWatch& watch, std::string historyFile) : m_watch(watch) {
    using OSAL::StandardStream;
    if (OSAL::IsTerminal(StandardStream::Input) && OSAL::IsTerminal(StandardStream::Output))
        m_terminal = std::make_unique<Terminal>(m_input, watch, std::move(historyFile));
}

LineEditor::~LineEditor() = default;

bool LineEditor::IsEditing() const {
    return m_terminal != nullptr;
}

LineEditor::Line LineEditor::Read(const std::string& prompt) {
    if (m_terminal) {
        m_terminal->prompt = prompt;
        int count = 0;
        const char* text = ::el_gets(m_terminal->editor, &count);
        if (!text || count <= 0) {
            if (!m_watch.IsRequested() || m_watch.Status() != Interrupted) return {{}, End::EndOfInput};
            m_watch.Forget();
            std::fputs("^C\n", stdout);
            std::fflush(stdout);
            ::el_reset(m_terminal->editor);
            return {{}, End::Interrupted};
        }
        std::string line(text, static_cast<std::size_t>(count));
        while (line.ends_with('\n') || line.ends_with('\r'))
            line.pop_back();
        if (!line.empty()) m_terminal->Remember(line);
        return {line, End::None};
    }
    while (true) {
        if (const auto end = m_pending.find('\n'); end != std::string::npos) {
            Line line{m_pending.substr(0, end), End::None};
            m_pending.erase(0, end + 1);
            if (line.text.ends_with('\r')) line.text.pop_back();
            return line;
        }
        const Got got = m_input.Read(m_pending, longestRead, m_watch.AnyCame());
        if (got == Got::WokenUp || (got != Got::Bytes && m_pending.empty())) return {{}, End::EndOfInput};
        if (got != Got::Bytes) return {std::exchange(m_pending, {}), End::None};
        if (m_pending.size() > longestLine && m_pending.find('\n') == std::string::npos) {
            m_pending.clear();
            return {{}, End::TooLong};
        }
    }
}

std::string LineEditor::DefaultHistoryFile() {
    if (const char* state = std::getenv("XDG_STATE_HOME"); state && *state == '/')
        return std::string(state) + "/tarn/history";
    if (const char* home = std::getenv("HOME"); home && *home == '/')
        return std::string(home) + "/.local/state/tarn/history";
    return {};
}

}  // namespace TarnHost
