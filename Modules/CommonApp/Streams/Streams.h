// Stream classes: streams that drop everything, page their output, or hand whole lines on.
#pragma once

#include <istream>
#include <ostream>
#include <streambuf>
#include <string>
#include <utility>

#include "OSAL/OSAL.h"

namespace Streams {

/// Takes every character and keeps none; has nothing to read.
template <typename C, typename Traits = std::char_traits<C>>
class nullbuf : public std::basic_streambuf<C, Traits> {
protected:
    using int_type = typename Traits::int_type;
    int_type overflow(int_type c) override { return Traits::not_eof(c); }
    std::streamsize xsputn(const C*, std::streamsize count) override { return count; }
};

/// A stream that owns its buffer.
template <typename C, typename Buf, typename Base>
class advanced_stream : public Base {
public:
    template <typename... Arguments>
    explicit advanced_stream(Arguments&&... arguments)
        : Base(nullptr), m_buffer(std::forward<Arguments>(arguments)...) {
        this->init(&m_buffer);
    }

private:
    Buf m_buffer;
};

template <typename C, typename Buf>
class advanced_ostream : public advanced_stream<C, Buf, std::basic_ostream<C>> {
public:
    using advanced_stream<C, Buf, std::basic_ostream<C>>::advanced_stream;
};

template <typename C, typename Buf>
class advanced_istream : public advanced_stream<C, Buf, std::basic_istream<C>> {
public:
    using advanced_stream<C, Buf, std::basic_istream<C>>::advanced_stream;
};

template <typename C = char>
class null_ostream : public advanced_ostream<C, nullbuf<C>> {};

template <typename C = char>
class null_istream : public advanced_istream<C, nullbuf<C>> {};

/// An unbuffered stream buffer that tells characters from line ends.
template <typename C, typename Traits = std::char_traits<C>>
class advanced_streambuf : public std::basic_streambuf<C, Traits> {
protected:
    using int_type = typename Traits::int_type;
    static constexpr C lineFeed = C('\n');

    int_type overflow(int_type c) override {
        if (IsLineEnd(c))
            EndLine();
        else
            WriteChar(Traits::to_char_type(c));
        return Traits::not_eof(c);
    }

    int_type underflow() override {
        const int_type c = GetChar();
        if (IsLineEnd(c)) EndLine();
        if (Traits::eq_int_type(c, Traits::eof())) return c;
        m_read = Traits::to_char_type(c);
        this->setg(&m_read, &m_read, &m_read + 1);
        return c;
    }

    virtual int_type GetChar() { return Traits::eof(); }
    virtual void WriteChar(C) {}
    virtual void EndLine() {}

private:
    static bool IsLineEnd(int_type c) {
        return Traits::eq_int_type(c, Traits::eof()) || Traits::eq(Traits::to_char_type(c), lineFeed);
    }

    C m_read{};  // the one character between `underflow` and its reader
};

/// Hands characters to another buffer and waits for a key after each page.
template <typename C, typename Traits = std::char_traits<C>>
class pausable_streambuf : public advanced_streambuf<C, Traits> {
public:
    using Target = std::basic_streambuf<C, Traits>;

    /// @param target, keyboard  buffers of others, which must outlive this one; without a keyboard nothing waits
    pausable_streambuf(Target* target, Target* keyboard, int columns, int rows, int column, int row,
                       std::basic_string<C, Traits> prompt)
        : m_target(target),
          m_keyboard(keyboard),
          m_columns(columns),
          m_rows(rows),
          m_column(column),
          m_row(row),
          m_prompt(std::move(prompt)) {}

protected:
    void WriteChar(C c) override {
        if (c == C('\t'))
            m_column = (m_column / 8 + 1) * 8;
        else if (c != C('\n'))
            ++m_column;
        if (m_columns > 0 && m_column >= m_columns) {
            m_column %= m_columns;
            ++m_row;
            PauseAfterPage();
        }
        if (m_target) m_target->sputc(c);
    }

    void EndLine() override {
        if (m_target) m_target->sputc(C('\n'));
        ++m_row;
        m_column = 0;
        PauseAfterPage();
    }

    int sync() override { return m_target ? m_target->pubsync() : 0; }

private:
    void PauseAfterPage() {
        if (m_row != m_rows) return;
        if (m_target) {
            m_target->sputn(m_prompt.data(), static_cast<std::streamsize>(m_prompt.size()));
            m_target->pubsync();
        }
        if (m_keyboard) m_keyboard->sbumpc();
        m_row = 0;
    }

    Target* m_target;
    Target* m_keyboard;
    int m_columns;
    int m_rows;
    int m_column;
    int m_row;
    std::basic_string<C, Traits> m_prompt;
};

template <typename C, typename Traits = std::char_traits<C>>
class basic_pausable_ostream : public std::basic_ostream<C, Traits> {
public:
    using Buffer = std::basic_streambuf<C, Traits>;

    basic_pausable_ostream(Buffer* target, Buffer* keyboard, std::basic_string<C, Traits> prompt, int columns = 1000,
                           int rows = 999)
        : std::basic_ostream<C, Traits>(nullptr), m_buffer(target, keyboard, columns, rows, 0, 0, std::move(prompt)) {
        this->init(&m_buffer);
    }

private:
    pausable_streambuf<C, Traits> m_buffer;
};

/// Collects a line and hands it on at its end, or at a flush.
template <typename C, typename Traits = std::char_traits<C>>
class lined_streambuf : public advanced_streambuf<C, Traits> {
protected:
    using String = std::basic_string<C, Traits>;

    void WriteChar(C c) override { m_line += c; }
    void EndLine() override { HandOn(); }
    int sync() override {
        HandOn();
        return 0;
    }

    /// Never gets an empty line.
    virtual void OnLine(const String& text) = 0;

private:
    void HandOn() {
        if (m_line.empty()) return;
        const String line = std::exchange(m_line, String());
        OnLine(line);
    }

    String m_line;
};

/// Sends lines to the debugger, with a prefix when one is set.
template <typename C>
class debug_streambuf : public lined_streambuf<C> {
public:
    explicit debug_streambuf(std::basic_string<C> prefix = {}) : m_prefix(std::move(prefix)) {}

protected:
    void OnLine(const std::basic_string<C>& text) override {
        const auto line = (m_prefix.empty() ? text : m_prefix + C(':') + text) + C('\n');
        OSAL::OutputDebugString(line.c_str());
    }

private:
    std::basic_string<C> m_prefix;
};

template <typename C>
class debug_ostream : public advanced_ostream<C, debug_streambuf<C>> {
public:
    using advanced_ostream<C, debug_streambuf<C>>::advanced_ostream;
};

}  // namespace Streams
