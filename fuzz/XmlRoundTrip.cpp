// A tree through the binary form and back. The input is a list of steps: a byte that chooses one, then the strings it
// needs, each behind a byte with its length.
// links: CommonApp
#include <sstream>
#include <string>

#include "Fuzz.h"
#include "Xml/Base.h"
#include "Xml/BinaryParser.h"

namespace {

class Steps {
public:
    Steps(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
    bool IsAtEnd() const { return m_size == 0; }
    unsigned Byte() {
        if (m_size == 0) return 0;
        --m_size;
        return *m_data++;
    }
    std::string String() {
        std::string text;
        for (auto length = Byte() % 32; length > 0; --length)
            text += static_cast<char>(Byte());
        return text;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

void Build(Steps steps, XML::IListener& listener) {
    listener.BeginDocument();
    std::size_t depth = 0;
    while (!steps.IsAtEnd()) {
        const auto step = steps.Byte() % 4;
        if (step == 0) {
            listener.OpenTag(steps.String().c_str());
            ++depth;
        } else if (step == 1) {
            const auto name = steps.String();
            listener.Attribute(name.c_str(), steps.String().c_str());
        } else if (step == 2) {
            listener.Text(steps.String().c_str());
        } else if (depth > 0) {
            listener.CloseTag();
            --depth;
        }
    }
    for (; depth > 0; --depth)
        listener.CloseTag();
    listener.EndDocument();
}

std::string BytesOf(const XML::Base& tree) {
    std::stringbuf target;
    XML::BinaryParser writer(&target);
    tree.Replay(writer);
    fuzz::Expect(writer.IsGood(), "memory takes all");
    return target.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    XML::Base built, read;
    Build({data, size}, built.GetListener());
    std::stringbuf target;
    XML::BinaryParser writer(&target);
    Build({data, size}, writer);
    std::istringstream stream(target.str());
    XML::BinaryParser().Parse(stream, read.GetListener());
    fuzz::Expect(!stream.fail() && BytesOf(built) == BytesOf(read), "the same tree");
    return 0;
}
