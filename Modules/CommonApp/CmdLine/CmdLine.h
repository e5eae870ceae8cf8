// Command lines: text tokens become typed calls.
//
// A parser is a table of keys. Each key, in the table's order, takes the tokens that its pattern matches, and the
// tokens of its arguments behind them, out of the list and calls its handlers; it leaves the rest for the keys after
// it. Where a token stands on the line has no bearing on the order of the calls.
//
// A key is made in one expression and handed to a parser (or to `Common::Application::AddKey`):
//
//     parser.AddKey(CmdLine::MakeKey<Flows>("-update_iq", this, &Flows::UpdateIQ));                     // no argument
//     parser.AddKey(CmdLine::MakeKey<Flows>("-channel", this).WithArgument<int>(&Flows::SetChannel));   // one argument
//     parser.AddKey(CmdLine::MakeKey<Flows>("-move", this).WithArgument<int>(&Flows::SetX).WithArgument<int>(...));
//     parser.AddKey(CmdLine::MakeDataKey("/format").WithData(&templatePath).WithData(&targetPath));
//
// Handlers are pointers to members, virtual ones too, so that a derived object gets its overrides. Keys are optional
// unless `.Mandatory()` is said. An argument's type is int, double, unsigned long, unsigned long long or std::string.
// Failures are thrown as pointers (`throw new`); the catcher deletes them.
#pragma once

#include <any>
#include <concepts>
#include <functional>
#include <list>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "CountedPtr.h"
#include "Exceptions.h"

namespace Environment {
class IContext;
}

namespace CmdLine {

using TokenList = std::list<std::string>;
/// Stays valid while other tokens come and go.
using Position = TokenList::iterator;

// --- Exceptions

namespace Exceptions {

class InvalidTokenException : public ParsingException {
public:
    explicit InvalidTokenException(const std::string& token);
    const std::string& GetToken() const { return m_token; }

private:
    std::string m_token;
};

class ArgumentMissingException : public ParsingException {
public:
    explicit ArgumentMissingException(const std::string& key);
    const std::string& GetKey() const { return m_key; }

private:
    std::string m_key;
};

class BadArgumentException : public ParsingException {
public:
    BadArgumentException(const std::string& token, const std::string& key);
    const std::string& GetToken() const { return m_token; }
    const std::string& GetKey() const { return m_key; }

private:
    std::string m_token;
    std::string m_key;
};

class KeyNotFoundException : public ParsingException {
public:
    explicit KeyNotFoundException(const std::string& key);
    const std::string& GetKey() const { return m_key; }

private:
    std::string m_key;
};

class UnexpectedException : public ParsingException {
public:
    explicit UnexpectedException(const std::string& leftovers);
    const std::string& GetLeftovers() const { return m_leftovers; }

private:
    std::string m_leftovers;
};

}  // namespace Exceptions

// --- Tokens

/// Splits at blanks, tabs and line feeds; double quotes keep these together. Empty tokens are dropped.
TokenList Tokenize(std::string_view line);
/// The tokens with blanks between them, quoted where `Tokenize` would split them; empty ones are left out.
std::string JoinTokens(const TokenList& tokens);

/// Matches case-insensitively (ASCII letters). Wildcards: * any run, ? one character, # a run of decimal digits, & one
/// hexadecimal digit, blank any of the four white characters; \ takes the next character literally.
/// On a match `text` becomes what the wildcards took, with `separator` where equal characters stood between.
bool WildcardMatch(std::string_view pattern, std::string& text, char separator);

// --- Keys and arguments

class IKey {
public:
    virtual const char* GetName() const = 0;
    /// Takes what is the key's out of `tokens` and calls its handlers.
    virtual void Parse(TokenList& tokens) = 0;
    virtual bool operator==(const IKey& other) const = 0;
    virtual bool operator!=(const IKey& other) const = 0;
    virtual ~IKey() = default;
};

class AKey : public IKey {
public:
    explicit AKey(std::string name) : m_name(std::move(name)) {}
    const char* GetName() const override { return m_name.c_str(); }
    bool operator==(const IKey& other) const override { return m_name == other.GetName(); }
    bool operator!=(const IKey& other) const override { return !(*this == other); }

    /// Takes the first token that matches the name out of the list. What its wildcards took stands in the list as
    /// tokens afterwards, the first of them at `position`.
    /// @return false, and nothing changed, when no token matches
    virtual bool Extract(TokenList& tokens, Position& position);

protected:
    /// As `Extract`, of the tokens from `position` on. A key goes on where it was, for what is before doesn't match: a
    /// long line takes no longer than its length.
    bool ExtractFrom(TokenList& tokens, Position& position) const;
    /// More matches of one key than this aren't possible, as each takes a character or a token away; but for a pattern
    /// of wildcards alone, which finds its own captures again and again.
    static std::size_t MatchLimit(const TokenList& tokens);

private:
    std::string m_name;
};

class ILoadable {
public:
    /// Takes tokens at `position` and moves it behind them.
    virtual void Load(TokenList& tokens, Position& position) = 0;
    virtual ~ILoadable() = default;
};

class IArgument : public virtual ILoadable {
public:
    /// Called when a value was read.
    virtual void OnLoaded() = 0;
    virtual std::any GetValue() const = 0;
};

/// The token at `position`, taken out; the empty string at the end of the list.
std::string TakeToken(TokenList& tokens, Position& position);

class Key : public AKey {
public:
    class ArgumentList : public std::vector<std::unique_ptr<IArgument>>, public virtual ILoadable {
    public:
        void Load(TokenList& tokens, Position& position) override;
    };

    template <typename V>
    class Argument;

    explicit Key(std::string name, bool optional = true) : AKey(std::move(name)), m_optional(optional) {}
    void Parse(TokenList& tokens) override;
    virtual void OnMatched(const ArgumentList&) {}
    /// Takes ownership.
    virtual void AddArgument(IArgument* argument) { m_arguments.emplace_back(argument); }
    void SetOptional(bool optional) { m_optional = optional; }

private:
    void LoadArguments(TokenList& tokens, Position& position, const std::string& reportedKey);

    ArgumentList m_arguments;
    bool m_optional;
};

template <typename V>
concept ArgumentType = std::same_as<V, int> || std::same_as<V, double> || std::same_as<V, unsigned long> ||
    std::same_as<V, unsigned long long> || std::same_as<V, std::string>;

/// Converts as a stream extracts, in the classic locale; no text may be left behind. The empty text is 0, and a number
/// out of range becomes the nearest of the type.
/// @throws Exceptions::InvalidTokenException* when it isn't a number
template <ArgumentType V>
V ConvertToken(const std::string& token) {
    if constexpr (std::same_as<V, std::string>) {
        return token;
    } else {
        std::istringstream stream(token);
        stream.imbue(std::locale::classic());
        V value{};
        stream >> value;
        const bool isNoNumber = stream.fail() && !token.empty() && value == V{};  // a lone sign, "1e"
        if (stream.rdbuf()->in_avail() > 0 || stream.bad() || isNoNumber)
            throw new Exceptions::InvalidTokenException(token);
        return value;
    }
}

template <typename V>
class Key::Argument : public IArgument {
public:
    void Load(TokenList& tokens, Position& position) override {
        if (tokens.empty()) throw new Exceptions::ArgumentMissingException("");
        m_value = ConvertToken<V>(TakeToken(tokens, position));
        OnLoaded();
    }
    void OnLoaded() override {}
    std::any GetValue() const override { return m_value; }

protected:
    V m_value{};
};

/// A key with handlers that are members of an object of type `T`.
template <typename T>
class BoundKey : public Key {
public:
    using Functor = std::function<void(const ArgumentList&)>;
    using Member = std::function<void(T&, const ArgumentList&)>;

    /// @param object  not owned; lives as long as the key is parsed with
    /// @param member  called on the object for each match; may be empty
    BoundKey(std::string name, T* object, Member member = nullptr, bool optional = true)
        : Key(std::move(name), optional), m_member(std::move(member)), m_object(object) {}

    /// Called for each match when there is no member.
    void SetFunctor(Functor functor) { m_functor = std::move(functor); }
    T* GetObject() const { return m_object; }

    void OnMatched(const ArgumentList& arguments) override {
        if (m_member)
            m_member(*m_object, arguments);
        else if (m_functor)
            m_functor(arguments);
    }

    /// Calls a setter of the key's object with each value read.
    template <typename V>
    class BoundArgument : public Argument<V> {
    public:
        using Setter = std::function<void(T&, V)>;
        BoundArgument(Setter setter, const BoundKey& key) : m_setter(std::move(setter)), m_key(key) {}
        void OnLoaded() override { m_setter(*m_key.GetObject(), this->m_value); }

    private:
        Setter m_setter;
        const BoundKey& m_key;
    };

private:
    Functor m_functor;
    Member m_member;
    T* m_object;
};

/// A key whose arguments go to strings of the caller.
class DataKey : public Key {
public:
    using Key::Key;

    template <typename V>
    class DataArgument;
};

template <>
class DataKey::DataArgument<std::string> : public IArgument {
public:
    /// @param target  not owned
    explicit DataArgument(std::string* target) : m_target(target) {}
    void Load(TokenList& tokens, Position& position) override {
        *m_target = TakeToken(tokens, position);
        OnLoaded();
    }
    void OnLoaded() override {}
    std::any GetValue() const override { return *m_target; }

private:
    std::string* m_target;
};

/// An optional key for a context of the command processor.
class NamedKey : public Key {
public:
    NamedKey(std::string name, Environment::IContext* target) : Key(std::move(name), true), m_target(target) {}
    Environment::IContext* GetTarget() const { return m_target; }

private:
    Environment::IContext* m_target;
};

// --- Building keys

/// A key under construction; becomes the counted pointer that a parser takes.
template <typename KeyType>
class KeyBuilder {
public:
    explicit KeyBuilder(CountedPtr<KeyType> key) : m_key(std::move(key)) {}

    /// Adds an argument to be read; `setter`, a member of the bound type or of a base, is called with its value.
    template <ArgumentType V, typename Setter>
    KeyBuilder& WithArgument(Setter setter) {
        using Argument = typename KeyType::template BoundArgument<V>;
        m_key->AddArgument(
            new Argument([setter](auto& object, V value) { std::invoke(setter, object, value); }, *m_key));
        return *this;
    }

    /// Adds an argument that is stored in a string of the caller, which outlives the key.
    KeyBuilder& WithData(std::string* target) {
        m_key->AddArgument(new DataKey::DataArgument<std::string>(target));
        return *this;
    }

    KeyBuilder& Mandatory() {
        m_key->SetOptional(false);
        return *this;
    }

    operator CountedPtr<IKey>() const { return m_key; }

private:
    CountedPtr<KeyType> m_key;
};

template <typename T>
KeyBuilder<BoundKey<T>> MakeKey(std::string name, std::type_identity_t<T>* object) {
    return KeyBuilder<BoundKey<T>>(MakeCounted<BoundKey<T>>(std::move(name), object));
}

/// @param handler  member of `T` or of a base, called for each match: without arguments, or with the argument list
template <typename T, typename Handler>
KeyBuilder<BoundKey<T>> MakeKey(std::string name, std::type_identity_t<T>* object, Handler handler) {
    const auto member = [handler](T& target, const Key::ArgumentList& arguments) {
        if constexpr (std::is_invocable_v<Handler, T&, const Key::ArgumentList&>)
            std::invoke(handler, target, arguments);
        else
            std::invoke(handler, target);
    };
    return KeyBuilder<BoundKey<T>>(MakeCounted<BoundKey<T>>(std::move(name), object, member));
}

inline KeyBuilder<DataKey> MakeDataKey(std::string name) {
    return KeyBuilder<DataKey>(MakeCounted<DataKey>(std::move(name)));
}

// --- Parser

/// Thread: one thread at a time. A handler may change the table; the parse that called it goes on with the old one.
class Parser {
public:
    enum class Leftovers { Ignored, Refused };

    explicit Parser(Leftovers leftovers = Leftovers::Ignored) : m_strict(leftovers == Leftovers::Refused) {}
    virtual ~Parser() = default;

    /// @throws Exceptions::UnexpectedException* when tokens are left and leftovers are refused
    virtual void Parse(const char* line);
    /// Each of the strings is one token.
    virtual void Parse(int argc, char** argv);
    /// Leaves in `tokens` what no key took.
    virtual void Parse(TokenList& tokens);
    /// A key of the same name is replaced in its place; else the key goes to the end, or to the front.
    virtual void AddKey(const CountedPtr<IKey>& key, bool atFront = false);
    virtual void Clear();

private:
    void ParseAll(TokenList tokens);

    std::list<CountedPtr<IKey>> m_keys;
    bool m_strict;
};

}  // namespace CmdLine
