// Names of sample files: a value stands between its key and the next "_", whatever else the name holds.
// links: SampleFiles
#include "CaptureName.h"

#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto name = fuzz::TextOf(data, size);
    const auto read = SampleFiles::ReadCaptureName(name);
    if (!read) return 0;
    const auto check = [&](std::string key, const std::string& value) {
        fuzz::Expect(!value.empty() && value.find('_') == std::string::npos, "a value ends before the next _");
        fuzz::Expect(name.find(key + value + "_") == name.find(key), "a value stands behind the first key");
    };
    check("BAND_", read->band);
    check("CHANNEL_", read->channel);
    check("BW_", read->bandwidth);
    check("CHAIN_", read->chain);
    return 0;
}
