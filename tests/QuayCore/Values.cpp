#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "CoreStart.h"
#include "Streams/LogPrinter.h"
#include "Support/Thrown.h"
#include "ValueFactory.h"

namespace TestTypes {

// Two members claim the text "warm"; value 7 is no member.
enum class EColour : std::int32_t {};
CoreTypes::EnumTable DescribeEnum(EColour) {
    static constexpr CoreTypes::EnumRow rows[] = {{-3, "Red", "warm"}, {9, "Amber", "warm"}, {10, "Blue"}};
    return {"Colour", rows};
}
constexpr EColour red{-3}, amber{9}, noColour{7};

}  // namespace TestTypes

namespace {

using namespace Core;
using Support::LocatedText;
using namespace TestTypes;

template <ValueType T>
std::string Read(const std::string& text, T start) {
    TypedValue<T> value(start);
    const bool taken = value.FromString(text);
    return (taken ? "read " : "kept ") + value.ToString();
}

TEST(Values, ReadTheWholeTextOrKeepWhatTheyHad) {
    const std::tuple<std::string, std::string> cases[] = {
        {Read("0x10", 1), "read 16"},
        {Read("16", 1), "read 16"},
        {Read("16 ", 1), "kept 1"},
        {Read("0xfF", 1), "read 255"},
        {Read("-0x10", 1), "kept 1"},
        {Read("0x", 1), "kept 1"},
        {Read("", 1), "kept 1"},
        {Read("2147483648", 1), "kept 1"},
        {Read("-2147483648", 1), "read -2147483648"},
        {Read("-9223372036854775808", 1LL), "read -9223372036854775808"},
        {Read("18446744073709551615", 1ULL), "read 18446744073709551615"},
        {Read("65", 'a'), "read 65"},
        {Read("-128", '\1'), "read -128"},
        {Read("128", '\1'), "kept 1"},
        {Read("A", '\1'), "kept 1"},
        {Read("255", static_cast<unsigned char>(1)), "read 255"},
        {Read("256", static_cast<unsigned char>(1)), "kept 1"},
        {Read("32768", static_cast<short>(1)), "kept 1"},
        {Read("true", false), "read true"},
        {Read("1", false), "kept false"},
        {Read("truer", false), "kept false"},
        {Read("1e6", 0.5), "read 1e+06"},
        {Read("3.14159265", 0.5), "read 3.14159"},
        {Read("0x10", 0.5), "kept 0.5"},
        {Read("2.5dB", 0.5), "kept 0.5"},
        {Read("", std::string("old")), "read "},
        {Read("Amber", red), "read Amber"},
        {Read("amber", red), "kept Red"},
        {Read("warm", red), "read Amber"},
        {Read("", red), "kept Red"},
        {Read("{}", std::set<Value>{Value(1)}), "kept "}};
    for (std::size_t index = 0; index < std::size(cases); ++index)
        EXPECT_EQ(std::get<0>(cases[index]), std::get<1>(cases[index])) << "case " << index;
    EXPECT_EQ(TypedValue<EColour>(noColour).ToString(), "");
}

TEST(Values, OfDifferentTypesCompareAndAssignThroughTheirTexts) {
    const Value colour(amber), number(9), text("9"), name("warm"), shortNumber(static_cast<short>(9)), empty;
    struct Case {
        const Value& left;
        const Value& right;
        bool equal;
        bool less;
    };
    const Case cases[] = {
        {number, shortNumber, true, false},  // "9" and "9"
        {number, text, true, false},
        {colour, name, true, false},        // the text names the member
        {name, colour, false, false},       // here "warm" stands against "Amber"
        {colour, number, false, false},     // "9" is no colour: "Amber" against "9"
        {Value(10), text, false, true},     // as texts, "10" comes before "9"
        {Value(10), number, false, false},  // as numbers it doesn't
        {Value(red), colour, false, true},  // by value, not by text
        {Value(red), Value("Blue"), false, true},
        {number, empty, false, true},  // a null sorts by the operation's own rule
    };
    for (const Case& one : cases) {
        EXPECT_EQ(one.left.Get()->Equals(one.right.Get()), one.equal) << one.left.ToString() << one.right.ToString();
        EXPECT_EQ(one.left.Get()->LessThan(one.right.Get()), one.less) << one.left.ToString() << one.right.ToString();
    }
    EXPECT_TRUE(empty < number && !(number < empty) && !(empty < empty)) << "an empty handle sorts first";

    TypedValue<EColour> target(red);
    EXPECT_FALSE(target.Assign(nullptr));
    EXPECT_FALSE(target.Assign(number.Get()));
    EXPECT_EQ(target.GetRef(), red);
    EXPECT_TRUE(target.Assign(name.Get()));
    EXPECT_EQ(target.GetRef(), amber);
    int held = 1;
    EXPECT_TRUE(TypedRefValue<int>(held).Assign(text.Get()));
    EXPECT_EQ(held, 9) << "a reference value writes where it refers to";
}

TEST(Values, OfIntegersShowTheirBitsAsHexadecimalDigits) {
    EXPECT_EQ(TypedValue<unsigned char>(0xAB).ToHexString(0), "000000AB");
    EXPECT_EQ(TypedValue<int>(0xAB).ToHexString(1), "AB");
    const TypedValue<short> negative(-1);
    EXPECT_EQ(dynamic_cast<const IIntegerValue&>(negative).GetAsUnsigned(), 0xFFFFFFFFFFFFFFFFu);
}

TEST(Values, AreSharedByCopiesUntilOneIsWritten) {
    Value first(5);
    Value second = first;
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(first.Get()->GetRefCount(), 2u);
    second.GetMutableRef<int>() = 6;
    EXPECT_EQ(first.GetRef<int>(), 5);
    EXPECT_EQ(second.GetRef<int>(), 6);
    EXPECT_EQ(first.Get()->GetRefCount(), 1u);
    const IValue* before = second.Get();
    second.GetMutableRef<int>() = 7;
    EXPECT_EQ(second.Get(), before) << "a value that nobody shares is written in place";

    Value moved = std::move(second);
    EXPECT_EQ(moved.Get()->GetRefCount(), 1u);
    moved.Set(moved.Get());
    EXPECT_EQ(moved.GetRef<int>(), 7);

    Value filled;
    filled.GetMutableRef<std::string>() += "new";
    EXPECT_EQ(filled.ToString(), "new");

    int outside = 1;
    Value reference;
    reference.Set(new TypedRefValue<int>(outside));
    const Value shared = reference;
    reference.GetMutableRef<int>() = 2;
    EXPECT_EQ(outside, 1) << "detaching a shared reference makes a value of its own";
    EXPECT_EQ(reference.GetRef<int>(), 2);
}

struct Recorder : Utilities::ILogDevice {
    void Write(const std::string& text) override { lines.push_back(text); }
    std::vector<std::string> lines;
};

TEST(Values, OfAnotherTypeAreRefusedWithALoggedException) {
    Recorder log;
    auto* printer = SingletonWrapper<Utilities::LogPrinter>::accessObject();
    printer->AddDevice("test", &log);
    Value text("5");
    const Value other = text;
    EXPECT_EQ(LocatedText([&] { text.GetRef<int>(); }), "Incompatible value type in Core::Value::GetRef");
    EXPECT_EQ(LocatedText([&] { Value().GetRef<int>(); }), "Incompatible value type in Core::Value::GetRef");
    EXPECT_EQ(LocatedText([&] { text.GetMutableRef<long>(); }),
              "Incompatible value type in Core::Value::GetMutableRef");
    EXPECT_EQ(text.ToString(), "5");
    printer->RemoveDevice("test");
    EXPECT_EQ(log.lines, std::vector<std::string>(3, "Incompatible value type"));
}

TEST(Values, AreMadeFromDescriptions) {
    Start();
    ValueFactory& factory = ValueFactory::Instance();
    factory.Register<EColour>("Colour");
    const auto made = [&](const std::string& description) {
        const std::unique_ptr<IValue> value(factory.Create(description));
        return value ? "'" + value->ToString() + "'" : "null";
    };
    const std::pair<const char*, const char*> cases[] = {
        {"{int:5}", "'5'"},
        {"{nosuch:5}", "null"},
        {"int", "'0'"},
        {"{int}", "'0'"},
        {"{int:}", "'0'"},
        {"{int:x}", "'0'"},
        {"{string:a:b}", "'a:b'"},
        {"int:5", "null"},
        {"{", "null"},
        {"{}", "null"},
        {"", "null"},
        {"{Colour:warm}", "'Amber'"},
        {"{uint8:0xff}", "'255'"},
        {"{int8:-1}", "'-1'"},
        {"{uint64:0xFFFFFFFFFFFFFFFF}", "'18446744073709551615'"},
    };
    for (const auto& [description, expected] : cases)
        EXPECT_EQ(made(description), expected) << description;
    EXPECT_TRUE(factory.IsKnown("{int:5}"));
    EXPECT_FALSE(factory.IsKnown("{int}") || factory.IsKnown("int") || factory.IsKnown("{nosuch:5}"));

    const std::unique_ptr<ITypedValue<EColour>> typed(factory.CreateFrom<EColour>("{Colour:Blue}"));
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->ToString(), "Blue");
    EXPECT_EQ(factory.CreateFrom<int>("{Colour:Blue}"), nullptr);

    std::string members;
    for (const Value& member : factory.GetDescriptor("Colour")->GetValues())
        members += member.ToString() + " ";
    EXPECT_EQ(members, "Red Amber Blue ");

    factory.Register<int>("Colour");
    EXPECT_EQ(made("{Colour:12}"), "'12'") << "the later registration of a name counts";
    EXPECT_EQ(factory.GetDescriptor("Colour")->GetMetaType(), nullptr);
    factory.Unregister("Colour");
    EXPECT_EQ(made("Colour"), "null");
}

}  // namespace
