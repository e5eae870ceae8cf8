#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <regex>

#include "Support/TempFolder.h"

namespace {

struct Outcome {
    int status;
    std::string output;  // behind the banner; errors first
};

struct FormatTool : testing::Test {
    /// Runs the program in the folder of the test.
    Outcome Run(const std::string& arguments, const std::string& program = TARN_FORMAT) const {
        const auto command =
            "cd " + folder.Path().string() + " && " + program + " " + arguments + " 2>error </dev/null";
        FILE* pipe = popen(command.c_str(), "r");
        std::string output;
        std::array<char, 4096> piece;
        while (const auto got = fread(piece.data(), 1, piece.size(), pipe))
            output.append(piece.data(), got);
        const int status = pclose(pipe);
        const std::regex banner("^\nTarn Format, Version [0-9.]+\nCopyright \\(C\\) [0-9]{4}\n\n");
        EXPECT_TRUE(std::regex_search(output, banner)) << output;
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                folder.Read("error") + std::regex_replace(output, banner, "")};
    }
    void Expect(const std::string& arguments, int status, const std::string& output) const {
        const auto run = Run(arguments);
        EXPECT_EQ(run.status, status) << arguments;
        EXPECT_EQ(run.output, output) << arguments;
    }
    const Support::TempFolder folder;
};

constexpr const char* advice = "Run 'tarn-format -?' to see the list of allowed command line options\n\n";

/// What stands in the document between "```NAME" and "```", the n-th time.
std::string Block(const std::string& document, const std::string& name, int n = 0) {
    std::size_t at = 0;
    for (const std::string fence = "```" + name + "\n"; n >= 0; --n)
        at = document.find(fence, at) + fence.size();
    return document.substr(at, document.find("```", at) - at);
}

}  // namespace

TEST_F(FormatTool, ShowsItsPages) {
    const auto page = Run("-h");
    EXPECT_EQ(page.status, 0);
    EXPECT_TRUE(std::regex_search(page.output, std::regex("^EEPROM Version [0-9.]+\n\nUsage:\n"
                                                          "    tarn-format \\[options\\]\n\nAvailable options:\n"
                                                          "    -\\?, -h         Shows this page\n")));
    for (const char* same : {"", "--help", "'-?'", "'/?'", "-z"})
        EXPECT_EQ(Run(same).output, page.output) << same;
    const auto guide = Run("/user-guide");
    EXPECT_EQ(guide.output.find(page.output), 0u);
    for (const std::string option : {"-pack", "-unpack", "-profile", "-set", "/format"}) {
        EXPECT_NE(page.output.find("\n    " + option + " "), std::string::npos) << option;
        const auto item = Run("-help " + option);
        EXPECT_TRUE(item.status == 0 && item.output.starts_with(option + " ")) << option;
        EXPECT_NE(guide.output.find("\n" + option + "\n" + item.output), std::string::npos) << option;
    }
    Expect("-help nothing", 0, "No help item for nothing\n");
}

TEST_F(FormatTool, SaysWhatIsWrongAndEndsWithAStatus) {
    folder.Write("text", "no document");
    folder.Write("loop.xml", "<P><Global><Variable name='a' value='$(a)'/></Global></P>");
    folder.Write("odd.xml",
                 "<P><Command name='odd' class='NoSuchClass'/><Command name='p' key='-p' class='Format'/></P>");
    folder.Write("deep.xml", [] {
        std::string text;
        for (int i = 0; i < 20000; ++i)
            text += "<a>";
        for (int i = 0; i < 20000; ++i)
            text += "</a>";
        return text;
    }());
    folder.Write("loop.txt", "$(a)");
    const std::pair<std::string, std::pair<int, std::string>> cases[] = {
        {"-nothing 'a b'", {252, "\nCommand line error: unrecognized arguments found: -nothing \"a b\"\n"}},
        {"-pack a", {252, "\nCommand line error: invalid usage of key <-pack>: argument is missing.\n"}},
        {"/format", {252, "\nCommand line error: invalid usage of key </format>: argument is missing.\n"}},
        {"-log=x", {252, "\nCommand line error: invalid usage of key <x>: 'x' is unexpected.\n"}},
        {"-pack missing x", {254, "\nError: File missing can't be read\n"}},
        {"-pack text x", {254, "\nError: File text isn't a whole XML document\n"}},
        {"-pack . x", {254, "\nError: File . isn't a whole XML document\n"}},
        {"-unpack text x", {254, "\nError: File text isn't a whole binary XML document\n"}},
        {"-unpack /dev/null x", {254, "\nError: File null isn't a whole binary XML document\n"}},
        {"-profile text", {254, "\nError: Could not read profile\n"}},
        {"-profile missing", {254, "\nError: File missing can't be read\n"}},
        {"-profile loop.xml /format loop.txt", {254, "\nError: The references in $(a) have no end\n"}},
        {"-profile odd.xml", {254, "\nError: odd Command is not supported!\n"}},
        {"/format missing", {254, "\nError: File missing can't be read\n"}},
    };
    for (const auto& [arguments, expected] : cases)
        Expect(arguments, expected.first, expected.second + (expected.first == 252 ? advice : ""));
    EXPECT_EQ(Run("-pack deep.xml deep.bin").status, 0);
    Expect("-unpack deep.bin x", 254, "\nError: File deep.bin holds elements that are too deep to be indented\n");
    const auto refused = Run("/format loop.txt missing/x");
    EXPECT_EQ(refused.status, 254);
    EXPECT_TRUE(refused.output.starts_with("\nError: can't write 'missing/x': ")) << refused.output;
    EXPECT_FALSE(std::filesystem::exists(folder / "x"));
}

TEST_F(FormatTool, EndsEveryKindOfFailureWithItsMessageAndStatus) {
    struct Case {
        const char* className;
        int status;
        const char *output, *place;
    };
    for (const auto& c : {Case{"Result", 7, "", ""}, Case{"Level", 17, "\ndone\n", ""},
                          Case{"Code", 2, "\nError: open\nDetails: (2) No such file or directory\n", "f.cpp(5)\n"},
                          Case{"Located", 253, "\nError: located\n", "f.cpp(9)\n"},
                          Case{"Driver", 253, "\nError: driver, -4\n", "d.cpp(1)\n"},
                          Case{"Legacy", 254, "\nError: legacy\n", ""}, Case{"Number", 255, "", ""}}) {
        folder.Write("p.xml", std::string("<P id='q'><Command name='n' class='") + c.className + "'/></P>");
        for (const bool placed : {false, true}) {
            const auto run = Run(placed ? "-log=1 -profile p.xml" : "-profile p.xml", FAILING_FORMAT);
            EXPECT_EQ(run.status, c.status) << c.className;
            EXPECT_EQ(run.output, std::string(c.output) + (placed ? c.place : "")) << c.className;
        }
    }
}

TEST_F(FormatTool, PacksAndUnpacksWhatOtherToolsRead) {
    folder.Write("a.xml",
                 "<?xml version='1.0'?>\n<!-- gone -->\n<b x='&quot;&lt;&amp;amp;&#39;'>\n <z/>\n <a> text </a></b>");
    Expect("-pack a.xml a.bin", 0, "File a.bin packed from a.xml\n");
    Expect("-unpack a.bin b.xml", 0, "File b.xml unpacked from a.bin\n");
    EXPECT_EQ(folder.Read("b.xml"),
              "<?xml version=\"1.0\" ?>\n<b x=\"&#34;&#60;&#38;amp;&#39;\">\n\t<z/>\n\t<a>text</a>\n</b>\n");
    Run("-pack b.xml b.bin");
    EXPECT_EQ(folder.Read("b.bin"), folder.Read("a.bin"));
    const auto packed = folder.Read("a.bin");
    for (std::size_t length = 0; length < packed.size(); length += 9) {
        folder.Write("cut.bin", packed.substr(0, length));
        EXPECT_EQ(Run("-unpack cut.bin c.xml").status, 254) << length;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "c.xml"));
}

TEST_F(FormatTool, DoesWhatItsManualShows) {
    const auto manual = Support::ReadText(DOCS "/format.md");
    folder.Write("site.xml", Block(manual, "xml"));
    folder.Write("wifi.template", Block(manual, "text", 0));
    const auto shown = Block(manual, "console");
    std::istringstream lines(shown);
    std::string expected, seen;
    for (std::string line; std::getline(lines, line);) {
        expected += line + "\n";
        if (line.starts_with("$ tarn-format ")) {
            const auto run = Run(line.substr(14));
            EXPECT_EQ(run.status, 0) << line;
            seen += line + "\n" + run.output;
        }
    }
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(folder.Read("wifi.cfg"), Block(manual, "text", 1));
}
