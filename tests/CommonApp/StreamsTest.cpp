#include <gtest/gtest.h>

#include <list>

#include "Streams/LogPrinter.h"
#include "TestStreams.h"

using Streams::AppStreams;

TEST(AppStreams, GiveTheNullStreamForWhatIsNotSet) {
    AppStreams::GetError() << "nobody reads this" << std::endl;
    EXPECT_TRUE(AppStreams::GetError().good());
    EXPECT_EQ(AppStreams::GetInput().get(), std::char_traits<char>::eof());
    Streams::null_ostream<wchar_t> wide;
    EXPECT_TRUE(wide << L"wide" << std::flush);
}

TEST(AppStreams, ChooseTheDebugStreamByTheMask) {
    CapturedStreams captured;
    std::ostringstream debug;
    EXPECT_EQ(&AppStreams::GetDebug(1), &captured.detail) << "mask 0";
    captured.streams.debugMask = 6;
    EXPECT_EQ(&AppStreams::GetDebug(4), &captured.detail) << "no debug stream";
    captured.streams.debugStream = &debug;
    EXPECT_EQ(&AppStreams::GetDebug(4), &debug);
    EXPECT_EQ(&AppStreams::GetDebug(1), &captured.detail);
    EXPECT_EQ(&AppStreams::GetDebug(), &debug);
    captured.streams.detailStream = nullptr;
    EXPECT_EQ(&AppStreams::GetDebug(1), &captured.streams.nullOut);
}

TEST(PausableStream, WaitsForAKeyAfterEachPage) {
    const auto paged = [](const std::string& text, int columns, int rows) {
        std::ostringstream target;
        std::istringstream keyboard("\n\n\n\n");
        Streams::basic_pausable_ostream<char> stream(target.rdbuf(), keyboard.rdbuf(), "<more>", columns, rows);
        stream << text << std::flush;
        return target.str();
    };
    EXPECT_EQ(paged("a\nb\nc\n", 80, 2), "a\nb\n<more>c\n");
    EXPECT_EQ(paged("abcdef", 3, 1), "ab<more>cde<more>f") << "the pause stands before the character that wraps";
    EXPECT_EQ(paged("a\tb\tc", 16, 1), "a\tb<more>\tc") << "tabs go to columns 8 and 16";
    EXPECT_EQ(paged("x", 0, 1), "x");
    Streams::basic_pausable_ostream<char>(nullptr, nullptr, "", 1, 1) << "abc\n";
}

namespace {

struct Lines : Streams::lined_streambuf<char> {
    void OnLine(const std::string& text) override { lines.push_back(text); }
    std::list<std::string> lines;
};

/// Reads from a text, one character at a time.
struct Reading : Streams::advanced_streambuf<char> {
    explicit Reading(std::string given) : text(std::move(given)) {}
    int GetChar() override { return at < text.size() ? static_cast<unsigned char>(text[at++]) : EOF; }
    void EndLine() override { ++ends; }
    std::string text;
    std::size_t at = 0;
    int ends = 0;
};

}  // namespace

TEST(LinedBuffer, HandsOnLinesAtTheirEndAndAtAFlush) {
    Lines buffer;
    std::ostream stream(&buffer);
    stream << "one\n\ntwo" << std::flush << std::endl << "open";
    EXPECT_EQ(buffer.lines, (std::list<std::string>{"one", "two"}));
}

TEST(AdvancedBuffer, ReadsCharacterByCharacterAndNotesLineEnds) {
    Reading buffer("a\n\xFFz");
    std::istream stream(&buffer);
    std::string all;
    for (char c; stream.get(c);)
        all += c;
    EXPECT_EQ(all, buffer.text);
    EXPECT_EQ(buffer.ends, 2);
}

TEST(DebugStream, SendsPrefixedLinesToTheDebugger) {
    static std::string heard;
    const auto former = OSAL::SetDebugOutputHook([](const char* text) { heard += text; });
    Streams::debug_ostream<char> stream("core");
    stream << "a " << 1 << "\n" << std::endl;
    OSAL::SetDebugOutputHook(former);
    EXPECT_EQ(heard, "core:a 1\n");
}

TEST(HexDump, HasSixteenBytesALine) {
    const std::string bytes = "0123456789abcde\n\xFF";
    EXPECT_EQ(Streams::DumpHex(bytes.data(), 17, true),
              "30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 0A  | 0123456789abcde.\n"
              "FF " +
                  std::string(45, ' ') + " | \xFF\n");
    EXPECT_EQ(Streams::DumpHex(bytes.data(), 1, false), "30 " + std::string(45, ' ') + "\n");
    EXPECT_EQ(Streams::DumpHex(nullptr, 5, true) + Streams::DumpHex("x", 0, true), "");
}

namespace {
struct Device : IOutputDevice {
    void Write(const char* text) override { written += text; }
    std::string written;
};
}  // namespace

TEST(DebugPrint, GoesToDevicesWhoseLevelReachesIt) {
    CDebugPrint print;
    Device first, second;
    print.SetDevice(1, &first);
    print.SetDevice(2, &second);
    print.SetLevel(1, 5);
    print.SetLevel(2, 2);
    print.SetFormatter(nullptr);
    print.Print("m", 1, "without a formatter");
    print.SetFormatter(new CLogFormatterBrief);
    print.SetFormatter(new CLogFormatterBrief);
    print.Printf("mod", 3, "%s %d", "text", 7);
    EXPECT_EQ(first.written, "[ OEM_INFO    ]  - mod:             text 7\n");
    EXPECT_EQ(second.written, "");
    print.Print("m", 2, "x");
    print.Print("m", -1, "below all levels");
    EXPECT_EQ(second.written, "[ OEM_WARNING ]  - m:             x\n - m:             below all levels\n");
    print.SetLevel(1, 0);
    EXPECT_FALSE(print.IsEnabled());
    print.Print("m", 1, "off");
    print.SetLevel(1, 9);
    print.ClearDevice(2);
    first.written.clear();
    print.Print("m", 1, std::string(9000, 'x').c_str());
    EXPECT_EQ(first.written.size(), 4095u);
    print.SetLevel(3, 1);
    print.SetDevice(-1, &first);
    EXPECT_EQ(print.GetLevel(3), 0);
}

TEST(StreamDevice, WritesLinesBehindTheMilliseconds) {
    CapturedStreams captured;
    captured.streams.device->Write("text");
    const auto line = captured.trace.str();
    ASSERT_EQ(line.size(), 13u);
    EXPECT_EQ(line.find_first_not_of("0123456789"), 6u);
    EXPECT_EQ(line.substr(6), ": text\n");
}

TEST(LogPrinter, PrintsByMaskFilterAndFormatterOfEachDevice) {
    struct NoB : Utilities::ILogFilter {
        bool Accepts(unsigned, const char*, const char* function, const char*) override { return function[0] != 'B'; }
    } filter;
    std::ostringstream plain, brief;
    Utilities::StreamLogDevice plainDevice(&plain), briefDevice(&brief);
    Utilities::BriefLogFormatter formatter;
    Utilities::LogPrinter printer;
    printer.AddDevice("plain", &plainDevice);
    printer.AddDevice("brief", &briefDevice);
    printer.SetMask("plain", 3);
    printer.SetFilter("plain", &filter);
    printer.SetFormatter("brief", &formatter);
    printer.SetFormatter("no such device", &formatter);
    printer.Print(4, "f", 1, "A", "info");
    printer.Print(2, "f", 1, "B", "filtered");
    printer.Print(1, "f", 1, "A", "error");
    printer.RemoveDevice("brief");
    printer.Print(2, "f", 1, "A", "warning");
    EXPECT_EQ(plain.str(), "error\nwarning\n");
    const std::string columns(39, ' ');
    EXPECT_EQ(brief.str(), "[OEMINFO] | A" + columns + " | info\n[OEMWARNING]| B" + columns + " | filtered\n" +
                               "[OEMERROR]| A" + columns + " | error\n");
}
