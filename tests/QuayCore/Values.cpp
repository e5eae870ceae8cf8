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

/// What a value shows that started as `start` and read a text; nothing for a text that it mustn't take.
template <ValueType T>
void ExpectReads(const T& start, std::initializer_list<std::pair<const char*, const char*>> cases) {
    const std::string before = TypedValue<T>(start).ToString();
    for (const auto& [text, shown] : cases) {
        TypedValue<T> value(start);
        EXPECT_EQ(value.FromString(text), shown != nullptr) << text;
        EXPECT_EQ(value.ToString(), shown ? shown : before) << text;
    }
}

TEST(Values, ReadTheWholeTextOrKeepWhatTheyHad) {
    constexpr const char* kept = nullptr;
    // clang-format off
    ExpectReads(1, {{"0x10", "16"}, {"16", "16"}, {"16 ", kept}, {"0xfF", "255"}, {"-0x10", kept}, {"0x", kept},
                    {"", kept}, {"2147483648", kept}, {"-2147483648", "-2147483648"}});
    ExpectReads(1LL, {{"-9223372036854775808", "-9223372036854775808"}});
    ExpectReads(1ULL, {{"18446744073709551615", "18446744073709551615"}});
    ExpectReads('\1', {{"65", "65"}, {"-128", "-128"}, {"128", kept}, {"A", kept}});
    ExpectReads(static_cast<unsigned char>(1), {{"255", "255"}, {"256", kept}});
    ExpectReads(static_cast<short>(1), {{"32768", kept}});
    ExpectReads(false, {{"true", "true"}, {"1", kept}, {"truer", kept}});
    ExpectReads(0.5, {{"1e6", "1e+06"}, {"3.14159265", "3.14159"}, {"0x10", kept}, {"2.5dB", kept}});
    ExpectReads(std::string("old"), {{"", ""}});
    ExpectReads(red, {{"Amber", "Amber"}, {"amber", kept}, {"warm", "Amber"}, {"", kept}});
    ExpectReads(std::set<Value>{Value(1)}, {{"{}", kept}});
    // clang-format on
    EXPECT_EQ(TypedValue<EColour>(noColour).ToString(), "");
}

TEST(Values, OfDifferentTypesCompareAndAssignThroughTheirTexts) {
    const Value colour(amber), number(9), text("9"), name("warm"), shortNumber(static_cast<short>(9)), empty;
    const std::tuple<Value, Value, bool, bool> cases[] = {
        // equal, less
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
    for (const auto& [left, right, equal, less] : cases) {
        EXPECT_EQ(left.Get()->Equals(right.Get()), equal) << left.ToString() << right.ToString();
        EXPECT_EQ(left.Get()->LessThan(right.Get()), less) << left.ToString() << right.ToString();
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
    const std::string where = "Incompatible value type in Core::Value::Get";
    EXPECT_EQ(LocatedText([&] { text.GetRef<int>(); }), where + "Ref");
    EXPECT_EQ(LocatedText([&] { Value().GetRef<int>(); }), where + "Ref");
    EXPECT_EQ(LocatedText([&] { text.GetMutableRef<long>(); }), where + "MutableRef");
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
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"{int:5}", "'5'"}, {"{nosuch:5}", "null"}, {"int", "'0'"}, {"{int}", "'0'"}, {"{int:}", "'0'"},
        {"{int:x}", "'0'"}, {"{string:a:b}", "'a:b'"}, {"int:5", "null"}, {"{", "null"}, {"{}", "null"}, {"", "null"},
        {"{Colour:warm}", "'Amber'"}, {"{uint8:0xff}", "'255'"}, {"{int8:-1}", "'-1'"},
        {"{uint64:0xFFFFFFFFFFFFFFFF}", "'18446744073709551615'"}};
    // clang-format on
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
