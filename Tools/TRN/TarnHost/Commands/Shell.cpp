#include <charconv>
#include <chrono>
#include <memory>
#include <thread>

#include "Commands/HostSession.h"
#include "Commands/LineEditor.h"
#include "Console/Present.h"
#include "Lines/ShellHelp.h"
#include "Lines/Shorten.h"
#include "SettingsMemory.h"

namespace TarnHost {
namespace {

using TarnSession::Session;
using TarnSession::Step;

/// Splits the first word off.
std::pair<std::string, std::string> FirstWord(const std::string& text) {
    const auto start = text.find_first_not_of(" \t");
    if (start == std::string::npos) return {};
    const auto end = std::min(text.find_first_of(" \t", start), text.size());
    const auto rest = std::min(text.find_first_not_of(" \t", end), text.size());
    return {text.substr(start, end - start), text.substr(rest)};
}

class Shell {
public:
    explicit Shell(Context& context) : m_context(context), m_sink(context.console) {}

    ExitStatus Run();

private:
    OSAL::Outcome<> Open(const HostOptions& options);
    bool RunLine(const std::string& line);
    void SayUnknown(const std::string& command);
    void RunOwn(const std::string& command, const std::string& rest);
    bool RunKeys(const std::string& line);
    bool TakeAnswer();
    void Repeat(const std::string& rest);
    void Reopen(const std::string& what);
    void ShowStatus();
    void Print(const std::string& text) {
        m_context.console.out.Write(text);
        m_context.console.out.Flush();
    }
    void Say(const std::string& text) { m_context.console.Say(text); }
    void NoteOrder(const std::string& line) {
        if (TarnSession::ReadsBeforeItsTrigger(line))
            Say("the reading keys of a line run before its trigger: send them on a line of their own");
    }
    /// True once after Ctrl-C of a person, for whom the shell goes on.
    bool TakeInterrupt();

    Context& m_context;
    PassingSink m_sink;
    HostOptions m_options;
    std::unique_ptr<Session> m_session;
    std::optional<PendingLine> m_running;    ///< line whose answer wasn't taken
    Step m_step = Step::Kernel;              ///< how far the last opening came
    TarnSession::SettingsMemory m_settings;  ///< of the lines that succeeded since the adapter was opened
    bool m_isRaw = false;
    bool m_isEditing = false;
    bool m_isQuitting = false;
    bool m_hasFailed = false;
};

OSAL::Outcome<> Shell::Open(const HostOptions& options) {
    m_session.reset();  // one adapter at a time
    TarnSession::Options opening;
    opening.radio = options.radio;
    opening.logPath = options.logPath;
    auto session = Session::Open(opening, m_sink, [this](Step step) { m_step = step; });
    if (!session) return session.Why();
    m_session = std::move(*session);
    m_options = options;
    m_settings = {};
    return {};
}

bool Shell::TakeInterrupt() {
    if (!m_isEditing || !m_context.watch.IsRequested() || m_context.watch.Status() != Interrupted) return false;
    m_context.watch.Forget();
    return true;
}

/// Waits for the running line and shows what came of it. False after Ctrl-C or a failed line.
bool Shell::TakeAnswer() {
    const std::string line = m_running->Line();
    const auto answer = m_running->Wait(m_context.watch);
    if (!answer) {
        if (TakeInterrupt()) Say("'" + Shortened(line) + "' goes on in the background; the next line waits for it");
        return false;
    }
    m_running.reset();
    if (answer->exitCode != 0) {
        m_hasFailed = true;
        Say(FailureText(*answer));
        return false;
    }
    m_settings.Take(line);
    Print(m_isRaw || !m_isEditing
              ? answer->output + (answer->output.empty() || answer->output.ends_with('\n') ? "" : "\n")
              : Readable(line, answer->output));
    SayWarnings(*answer, "", m_context);
    return true;
}

bool Shell::RunKeys(const std::string& line) {
    if (m_running && !TakeAnswer() && m_running) return false;
    m_running.emplace(*m_session, line);
    return TakeAnswer();
}

void Shell::Repeat(const std::string& rest) {
    const auto [number, line] = FirstWord(rest);
    unsigned count = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), count);
    if (error != std::errc() || end != number.data() + number.size() || line.empty())
        return Say("!repeat takes a number and a line, such as: !repeat 20 -trigger_now");
    NoteOrder(line);
    for (unsigned k = 0; k < count; ++k) {
        if (TakeInterrupt()) return Say("ended after " + std::to_string(k) + " of " + number);
        if (!RunKeys(line)) return;
    }
}

void Shell::Reopen(const std::string& what) {
    if (what.empty())
        return Say("!open takes an adapter such as hw=16,bands=0+1, or an air such as sim:quiet or file:captures");
    HostOptions options = m_options;
    const bool isAir = what.starts_with("sim") || what.starts_with("file:");
    (isAir ? options.radio.air : options.radio.adapter) = what;
    const HostOptions before = m_options;
    if (const auto opened = Open(options); !opened) {
        Say(opened.Reason());
        if (const auto again = Open(before); !again)
            Say("and the adapter before can't be opened again: " + again.Reason());
        else
            Say("the adapter before is open again, with its default settings");
        return;
    }
    ShowStatus();
}

void Shell::ShowStatus() {
    std::string text = "adapter  " + quayCommand::DescribeAdapter() + "\nair      " + quayCommand::DescribeAir() + "\n";
    text += "log      " + (m_options.logPath.empty() ? "none" : m_options.logPath) + "\n";
    const std::string settings = m_settings.Text();
    text += "settings ";
    text += settings.empty() ? "as they are at the start" : settings;
    text += '\n';
    Print(text);
}

void Shell::SayUnknown(const std::string& command) {
    const std::string meant = Meant(command);
    Say("'" + Shortened(command) + "' isn't known here" + (meant.empty() ? "; help tells what is" : meant));
}

void Shell::RunOwn(const std::string& command, const std::string& rest) {
    if (command == "help" || command == "!help" || command == "?")
        Print(rest.empty() ? HelpText() : HelpText(rest));
    else if (command == "!quit" || command == "!exit" || command == "quit" || command == "exit")
        m_isQuitting = true;
    else if (command == "!status")
        ShowStatus();
    else if (command == "!open")
        Reopen(rest);
    else if (command == "!repeat")
        Repeat(rest);
    else if (command == "!raw" && (rest == "on" || rest == "off"))
        m_isRaw = rest == "on";
    else
        SayUnknown(command);
}

bool Shell::RunLine(const std::string& line) {
    const auto [first, rest] = FirstWord(line);
    if (first.empty() || first.starts_with('#')) return true;
    if (first.starts_with('-') || first.starts_with('"')) {
        NoteOrder(line);
        return RunKeys(line);
    }
    RunOwn(first, rest);
    return true;
}

ExitStatus Shell::Run() {
    LineEditor editor(m_context.watch, LineEditor::DefaultHistoryFile());
    m_isEditing = editor.IsEditing();
    if (const auto opened = Open(m_context.options); !opened)
        return Refuse(opened.Reason(), m_context, m_step == Step::Radio || m_step == Step::Start ? NoAdapter : Failed);
    if (m_isEditing) Print("Tarn on " + quayCommand::DescribeAir() + ". help tells how to begin, !quit ends.\n");
    while (!m_isQuitting && m_context.console.out.Ok()) {
        const LineEditor::Line line = editor.Read("tarn> ");
        if (line.end == LineEditor::End::EndOfInput) break;
        if (line.end == LineEditor::End::TooLong) {
            Say("a line is longer than 1 MiB");
            m_hasFailed = true;
            break;
        }
        if (line.end == LineEditor::End::None) RunLine(line.text);
    }
    if (m_isEditing && !m_isQuitting) Print("\n");
    if (m_context.watch.IsRequested()) {
        if (m_session && m_session->Busy()) AbandonLine(*m_session, m_context);
        return m_context.watch.Status();
    }
    // A person saw the errors; a program that pipes lines in asks for the status.
    return CheckRadio(m_hasFailed && !m_isEditing ? Failed : Success, m_context);
}

}  // namespace

ExitStatus Execute(const ShellOptions&, Context& context) {
    return Shell(context).Run();
}

}  // namespace TarnHost
