// XML text: any input ends; a document that was read is read again from what is written of it.
// links: CommonApp
#include <sstream>
#include <string>

#include "Fuzz.h"
#include "Xml/Base.h"
#include "Xml/Writer.h"

namespace {

std::string TextOf(const XML::Base& tree) {
    std::ostringstream text;
    XML::Writer writer(text,
                       {.layout = XML::WriterStyle::Layout::OneLine, .escaping = XML::WriterStyle::Escaping::Markup});
    tree.Replay(writer);
    return text.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream stream(std::string(fuzz::TextOf(data, size)));
    XML::Base tree;
    const bool failed = tree.Load(stream, true).fail();
    fuzz::Expect(failed != static_cast<bool>(tree.GetRoot()), "a tree or the fail bit");
    if (!tree.GetRoot()) return 0;
    const auto text = TextOf(tree);
    std::istringstream again(text);
    fuzz::Expect(!tree.Load(again, true).fail() && TextOf(tree) == text, "what is written is read again");
    return 0;
}
