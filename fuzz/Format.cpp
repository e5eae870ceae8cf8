// Message templates and references to variables: any template ends. The first line is the template, the others are its
// arguments, and "name=value" lines set variables.
// links: CommonApp
#include <sstream>
#include <string>

#include "Caught.h"
#include "Environment/Variables.h"
#include "Format.h"
#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream lines(std::string(fuzz::TextOf(data, size)));
    std::string line;
    std::getline(lines, line);
    Common::Format format(line);
    std::string text = line;
    Environment::Variables variables;
    const auto step = [&] {
        for (int count = 0; count < 20 && std::getline(lines, line); ++count) {
            format % line;
            const auto at = line.find('=');
            if (at != std::string::npos) variables.Set(line.substr(0, at), line.substr(at + 1));
        }
        variables.Evaluate(text);
        variables.Expand(text, true);
    };
    Common::RunCaught(step, [](const Common::Caught&) {});
    return 0;
}
