// The texts of a radio set-up: adapter, fault plan and air. What is accepted is written out and read back the same.
// links: QuayCommandsImpl
#include "Adapter/AdapterDescription.h"
#include "AirKinds.h"
#include "Fuzz.h"
#include "Monitor/FaultPlan.h"

using namespace quayCommand;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::TextOf(data, size);
    if (const auto adapter = ReadAdapter(text)) {
        const auto again = ReadAdapter(AdapterText(*adapter));
        fuzz::Expect(again && *again == *adapter, "a description reads back as it is written");
    }
    if (const auto faults = FaultPlan::Read(text); faults.IsRefused())
        fuzz::Expect(faults.Reason().starts_with("faults: "), "a refusal names its option");
    // Not "file:" of a device or a folder of the machine: only the forms.
    if (text.find('/') == std::string_view::npos && !text.starts_with("file:"))
        if (const auto air = OpenAir(std::string(text), {}); air.IsRefused())
            fuzz::Expect(air.Reason().starts_with("air: "), "a refusal names its option");
    return 0;
}
