// The binary form of XML: any input ends, with a tree or with the fail bit.
// links: CommonApp
#include <sstream>
#include <string>

#include "Fuzz.h"
#include "Xml/Base.h"
#include "Xml/BinaryParser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream stream(std::string(fuzz::TextOf(data, size)));
    XML::Base tree;
    XML::BinaryParser().Parse(stream, tree.GetListener());
    fuzz::Expect(size < 5 || stream.fail() != static_cast<bool>(tree.GetRoot()), "a tree or the fail bit");
    return 0;
}
