#include <gtest/gtest.h>

#include "Format.h"
#include "Xml/Base.h"
#include "Xml/Writer.h"
#include "XmlEvents.h"

namespace {

std::string Repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (; count > 0; --count)
        all += text;
    return all;
}

/// The tree after each of the documents, the first one in place of what was there.
std::string Saved(const std::vector<std::string>& documents) {
    XML::Base base;
    for (const auto& document : documents) {
        std::istringstream stream(document);
        base.Load(stream, &document == &documents.front());
    }
    std::ostringstream saved;
    base.Save(saved);
    return base.GetRoot() ? saved.str().substr(saved.str().find('\n') + 1) : "no tree";
}

struct Tree : testing::Test {
    explicit Tree(const std::string& text = "<p id='1'><x a='1'/><y><x a='2'>t</x></y><x a='3'/></p>") {
        std::istringstream stream(text);
        base.Load(stream, true);
    }
    XML::Base base;
};

}  // namespace

TEST(XmlText, BecomesEventsOrTheFailBit) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "{}"},
        {" \n", "{}"},
        {"<?xml version='1.0'?><!DOCTYPE a><!-- > - -- <b> --><a/>", "{<a >}"},
        {"<a><b>\n one two\t</b></a>", "{<a <b 'one two'>>}"},
        {"<a x='1\"' y = \"2'\"\n/>", "{<a x=1\" y=2' >}"},
        {"<a x=1/>", "{<a x= fail"},  // "1" is met as the next name
        {"<a x>", "{<a fail"},
        {"<a ='1'/>", "{<a fail"},
        {"<a/ >", "{<a fail"},
        {"<a x=''/></a>", "{<a x= >fail"},
        {"<a><b></a>", "{<a <b fail"},
        {"<a>", "{<a fail"},
        {"</a>", "{fail"},
        {"< a/>", "{fail"},
        {"<n:a/>", "{<n fail"},  // a colon ends a name
        {"<a/>text", "{<a >fail"},
        {"text<a/>", "{'text'<a >}"},
        {"<a></a junk>", "{<a >}"},
        {"<A-+~_.9>&lt;&gt;&quot;&nl;&amp;</A-+~_.9>", "{<A-+~_.9 '<>\"\n&'>}"},
        {"<a>&amp;lt; &amp;#65; &#65;&#x41;&#X41; &#321;&#x6f;&#x4F; &apos; &#65</a>",
         "{<a '&lt; A AAA AoO &apos; &#65'>}"},
        {"<a x='&#;b'/>", "{<a x= >}"},  // no digits give the byte 0
        {"<a>&#10;</a>", "{<a '\n'>}"},  // cut first, decoded then
        {"<!-", "{fail"},
        {"<?", "{fail"},
        {"<a></a", "{<a >fail"},
    };
    for (const auto& [text, events] : cases) {
        XmlEvents::Trickle pieces(text);
        EXPECT_EQ(XmlEvents::OfText(text), events) << text;
        EXPECT_EQ(XmlEvents::OfText(&pieces), events) << text;
    }
}

TEST(XmlText, EndsWithTheFailBitWhereverItIsCut) {
    const std::string text = "<?xml version=\"1.0\"?><root a='1'><!-- c --><b x=\"&lt;\">text</b><c/></root>";
    EXPECT_TRUE(XmlEvents::OfText(text).ends_with(">>}"));
    const auto begin = text.find("<root");
    for (std::size_t length = 1; length < text.size(); ++length)
        EXPECT_EQ(XmlEvents::OfText(text.substr(0, length)).ends_with("fail"), length != begin) << length;
}

TEST(XmlText, MayBeDeepAndItsPartsLong) {
    constexpr std::size_t depth = 100000, length = 1 << 20;
    const auto deep = Repeated("<a>", depth);
    std::istringstream open(deep), closed(deep + Repeated("</a>", depth));
    XML::Base base;
    EXPECT_TRUE(base.Load(open, true).fail());
    EXPECT_FALSE(base.Load(closed, true).fail());
    std::ostringstream saved;
    base.GetRoot()->SaveTo(saved);
    XML::Node loaded;
    std::istringstream again(saved.str());
    loaded.LoadFrom(again);
    std::ostringstream twice;
    loaded.SaveTo(twice);
    EXPECT_EQ(saved.str(), twice.str());
    std::stringbuf packed;
    XML::BinaryParser writer(&packed);
    base.Replay(writer);
    EXPECT_EQ(XmlEvents::OfBinary(packed.str()), "{" + Repeated("<a ", depth) + std::string(depth, '>') + "}");
    std::ostringstream text;
    base.Save(text);
    EXPECT_TRUE(text.bad()) << "its indentation alone would be 10 GB";

    const std::string name(length, 'n'), value(length, 'v');
    EXPECT_EQ(XmlEvents::OfText("<" + name + " " + name + "='" + value + "'>" + value + "</" + name + ">"),
              "{<" + name + " " + name + "=" + value + " '" + value + "'>}");
}

TEST(XmlText, OfABrokenStreamIsAborted) {
    struct Broken : std::streambuf {
        int_type underflow() override { throw 1; }
    } buffer;
    std::istream stream(&buffer);
    XmlEvents events;
    EXPECT_FALSE(XML::Parser(&events).Parse(stream));
    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(events.seen, "{!");
}

TEST(XmlWriter, IndentsByTabsAndClosesEmptyElements) {
    EXPECT_EQ(Saved({"<a b='1'><c/><d>text</d><e><f/></e></a>"}),
              "<a b=\"1\">\n\t<c/>\n\t<d>text</d>\n\t<e>\n\t\t<f/>\n\t</e>\n</a>\n");
    EXPECT_EQ(Saved({"<a>one<b/>two</a>"}), "<a>onetwo\t<b/>\n</a>\n") << "a tree joins the texts of an element";
    std::ostringstream text;
    XML::Writer line(
        text,
        {.layout = XML::WriterStyle::Layout::OneLine, .escaping = XML::WriterStyle::Escaping::Markup, .quote = '\''});
    std::istringstream source("<a b='\"&lt;&amp;amp;'><c>&#32;x y&#9;</c><d/></a>");
    XML::Parser(&line).Parse(source);
    EXPECT_EQ(text.str(), "<a b='&#34;&#60;&#38;amp;'><c>&#32;x y&#9;</c><d/></a>");
    EXPECT_EQ(XmlEvents::OfText(text.str()), "{<a b=\"<&amp; <c ' x y\t'><d >>}");
    line.Abort();
    EXPECT_TRUE(text.bad());
}

TEST(XmlTree, MergesTopLevelElementsOnly) {
    EXPECT_EQ(Saved({"<a x='1'><b/></a>", "<a x='2'><b/></a><c/>"}), "<a x=\"2\">\n\t<b/>\n\t<b/>\n</a>\n<c/>\n");
    EXPECT_EQ(Saved({"<b/><a/>"}), "<a/>\n<b/>\n") << "children stand in the order of their names";
    EXPECT_EQ(Saved({"<a/>", "<a>"}), "no tree");
    EXPECT_EQ(Saved({""}), "");
}

TEST_F(Tree, IsSearchedByPathPatternAndAttribute) {
    const auto& root = *base.GetRoot();
    EXPECT_EQ(root.FindChild("p/y\\x")->Text(), "t");
    for (const char* none : {"p/z", "p/y/", "", "x", "/p"})
        EXPECT_EQ(root.FindChild(none), nullptr) << none;
    const auto found = [&](const char* path, XML::Node::Search search = XML::Node::Search::Children) {
        std::string all;
        for (const auto& [where, node] : root.FindAll(path, search))
            all += where + "=" + node->GetOrEmpty("a") + " ";
        return all;
    };
    using enum XML::Node::Search;
    EXPECT_EQ(found("p/x"), "p/x=1 p/x=3 ");
    EXPECT_EQ(found("nothing/x"), "");
    EXPECT_EQ(found("*/X", Descendants), "./p/x=1 ./p/x=3 ./p/y/x=2 ");
    EXPECT_EQ(found("./?", Descendants), "./p= ");
    EXPECT_EQ(root.FindAttribute("*/x", "a", "3"), root.FindAll("p/x").rbegin()->second.Get());
    EXPECT_EQ(root.FindAttribute("*/x", "a", "9"), nullptr);
    EXPECT_EQ(root.FindChild("p/x")->Expanded("<$(a)$(b)>", false), "<1$(b)>");
}

TEST_F(Tree, SavesItsAttributesAndChildrenToAStream) {
    std::ostringstream stream;
    base.GetRoot()->FindChild("p/y")->SaveTo(stream);
    const std::string expected("\0\0\0\0\1\0\0\0x\0\1\0\0\0a\0002\0\0\0\0\0", 22);
    EXPECT_EQ(stream.str(), expected);
    for (std::size_t length = 0; length <= expected.size(); ++length) {
        std::istringstream source(expected.substr(0, length));
        XML::Node node;
        node.LoadFrom(source);
        EXPECT_EQ(source.fail(), length < expected.size()) << length;
    }
    for (const auto& huge : {std::string("\xFF\xFF\xFF\xFF", 4), std::string("\0\0\0\0\xFF\xFF\xFF\xFF", 8)}) {
        std::istringstream source(huge);
        XML::Node().LoadFrom(source);
        EXPECT_TRUE(source.fail()) << "a count is no promise";
    }
}
