// Command lines and key patterns: any line ends, and joined tokens fall into no more of them. The first line is a
// pattern.
// links: CommonApp
#include <string>

#include "Caught.h"
#include "CmdLine/CmdLine.h"
#include "Fuzz.h"

namespace {

struct Flows {
    void SetInt(int) {}
    void SetReal(double) {}
    void SetText(std::string) {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(fuzz::TextOf(data, size));
    const auto end = std::min(input.find('\n'), input.size());
    const auto pattern = input.substr(0, end), line = input.substr(std::min(end + 1, input.size()));
    std::string captures = line;
    CmdLine::WildcardMatch(pattern, captures, '\xFF');

    const auto tokens = CmdLine::Tokenize(line);
    fuzz::Expect(CmdLine::Tokenize(CmdLine::JoinTokens(tokens)).size() <= tokens.size(), "no more tokens");
    Flows flows;
    CmdLine::Parser parser(CmdLine::Parser::Leftovers::Refused);
    parser.AddKey(CmdLine::MakeKey<Flows>(pattern, &flows).WithArgument<int>(&Flows::SetInt));
    parser.AddKey(CmdLine::MakeKey<Flows>("-d", &flows).WithArgument<double>(&Flows::SetReal));
    parser.AddKey(CmdLine::MakeKey<Flows>("-t=*,*", &flows).WithArgument<std::string>(&Flows::SetText));
    Common::RunCaught([&] { parser.Parse(line.c_str()); }, [](const Common::Caught&) {});
    return 0;
}
