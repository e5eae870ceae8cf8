// Snapshots: whatever the text, the readers end, stay within their arrays, and write what they read the same again.
// links: TarnFlowsImpl
#include "Stores/Snapshot.h"

#include <stdexcept>

#include "Exceptions.h"
#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::TextOf(data, size);
    std::vector<std::string_view> names;
    for (const Snapshot::Setting& setting : Snapshot::Settings())
        names.push_back(setting.name);
    static LumenSpectrumAnalyzer::CLmnSA engine;
    quayCommand::GainConfig gain;
    const auto texts = Snapshot::ReadValues(text, names);
    try {
        for (std::size_t place = 0; place < Snapshot::PlaceCount; ++place)
            if (texts[place])
                Snapshot::Settings()[place].put({engine, gain}, Snapshot::Settings()[place].parse(*texts[place]));
        Snapshot::CheckBuffers(engine);
        fuzz::Expect(engine.m_NumChains == 0 || engine.m_SampleRate / engine.m_RBW * 1000.0 <= Snapshot::MaxBins,
                     "no spectrum is larger than a measurement's");
    } catch (const Common::Exception&) {
    } catch (const std::logic_error&) {  // the standard conversions' failures
    }
    engine.m_NumOfBins = 16;
    engine.m_NumOfSamples = 64;
    SavedArrays arrays = Snapshot::MakeArrays(engine);
    try {
        Snapshot::ReadArrays(text, arrays);
    } catch (const std::logic_error&) {
    }
    FreqPowerStore powers;
    Snapshot::GivePowers(arrays, powers);
    Snapshot::TakePowers(powers, arrays);
    const std::string written = Snapshot::ToText(arrays, {});
    SavedArrays again = Snapshot::MakeArrays(engine);
    Snapshot::ReadArrays(written, again);
    fuzz::Expect(Snapshot::ToText(again, {}) == written, "what is written reads back the same");
    return 0;
}
