// Bodies of the front-end's messages. Order of keys, blanks and quotes are the protocol: a blank behind each colon, ",
// " between numbers, "," between members and objects unless a body says otherwise. Numbers are as "%f" writes them.
// Texts go out as they stand; only Quoted escapes.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "Readouts.h"

namespace JsonText {

/// {"NAME": "TEXT","NAME": "TEXT"}, for texts alone.
std::string Object(std::initializer_list<std::pair<std::string_view, std::string_view>> members);
/// {"status": "TEXT"}
std::string Status(std::string_view text);
/// Of every save.
std::string SavedStatus();
/// The text between double quotes, with backslash sequences for line feed, carriage return, tab, quote and backslash.
std::string Quoted(std::string_view text);
/// The text as printf's "%f" writes it.
std::string Number(double value);

// Results. `chain` is the selection's text, "A", "B" or "AB": each chain's object bears it, in the engine's order.
std::string Sweep(const SweepReadout& sweep);
/// @param average, maxHold  left out when null
std::string Spectrum(std::string_view chain, const ChainBuffers& spectrum, const ChainBuffers* average,
                     const ChainBuffers* maxHold);
/// One object for all chains; its numbers are those of a default output stream.
std::string ChannelAverage(std::string_view chain, const ChainBuffers& average);
std::string IQ(std::string_view chain, const IQReadout& codes);
std::string Histogram(std::string_view chain, const HistogramReadout& counts);
std::string Peaks(std::string_view chain, const PeaksReadout& peaks);

/// Collects the objects of an array; Take gives "[" and "]" around them, and is the last call.
class Array {
public:
    /// Where the next object is written.
    std::string& Next();
    std::string Take();

private:
    std::string m_text = "[";
};

}  // namespace JsonText
