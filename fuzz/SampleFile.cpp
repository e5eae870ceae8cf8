// Sample files: the reader agrees with the rules of single lines however its calls cut the file.
// links: SampleFiles
#include "SampleReader.h"

#include <cstring>
#include <vector>

#include "Fuzz.h"
#include "Numbers.h"

using namespace SampleFiles;

namespace {

bool IsSame(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::TextOf(data, size);
    const auto path = fuzz::FileWith(text);
    auto reader = SampleReader::Open(path);
    fuzz::Expect(reader.has_value(), "the file opens");
    const std::size_t block = 1 + size % 7;
    std::vector<double> i(block), q(block);
    auto rest = text;
    for (;;) {
        const auto stretch = reader->Read(i, q);
        for (std::size_t n = 0; n <= stretch.samples; ++n) {
            if (n == stretch.samples && stretch.state) break;
            fuzz::Expect(!rest.empty(), "a sample comes of a line");
            const auto feed = rest.find('\n');
            double lineI = 0, lineQ = 0;
            const auto state = ReadSampleLine(rest.substr(0, feed), lineI, lineQ);
            fuzz::Expect(static_cast<bool>(state) == (n < stretch.samples), "a line is as good alone");
            fuzz::Expect(!state || (IsSame(lineI, i[n]) && IsSame(lineQ, q[n])), "a line gives the same numbers alone");
            rest.remove_prefix(feed == std::string_view::npos ? rest.size() : feed + 1);
        }
        if (!stretch.state) break;
        if (stretch.samples < block) {
            fuzz::Expect(rest.empty(), "all lines are read");
            break;
        }
    }
    fuzz::Expect(NumberLinesOf(text).size() <= size, "a line has its line feed or is the last");
    ParseInt(text);
    return 0;
}
