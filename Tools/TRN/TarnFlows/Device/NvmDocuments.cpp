#include "Device/NvmDocuments.h"

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "HardwareTypes.h"

namespace {

// The memory of the simulated adapter, as far as it has one: an identity, what is fitted, and where its transmit power
// would be kept. The chips' own memories hold thousands of fields, which belong to whoever makes a real adapter's radio
// component.
struct Field {
    const char* name;
    const char* category;
    unsigned startBit;
    unsigned stopBit;
    unsigned byteOffset;
    const char* preserved;
};

struct Section {
    const char* name;
    unsigned byteLength;
    std::vector<Field> fields;
};

struct Partition {
    const char* name;
    unsigned id;
    std::vector<Section> sections;
};

struct Product {
    const char* name;
    const char* formFactor;  ///< null: the attribute is absent
    const char* contentVersion;
    bool hasGnss;
    bool hasBurnerNames;    ///< sections say under which name the burner knows them
    bool hasUltraHighBand;  ///< the family receives at 6-7 GHz
    bool hasAntennaSwitch;
};

using RadioFacts::NvmDocument;
constexpr auto DocumentCount = static_cast<std::size_t>(NvmDocument::None);

constexpr std::array<Product, DocumentCount> Products{{
    {"Teak", nullptr, "0xA356", true, false, false, false},
    {"Fir", "1.0", "0xA435", false, false, false, false},
    {"Yew", "Module SKU", "0xA492", false, false, false, false},
    {"Ash", "Module SKU", "0xA626", false, true, true, false},
    {"Ash", "Module SKU", "0xA626", false, true, true, true},  // Bay: told from Ash by its fields alone
    {"Ash4", "Module SKU", "0xA640", false, true, true, true},
}};

std::string Hex(unsigned value) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    do {
        text.insert(text.begin(), digits[value % 16]);
        value /= 16;
    } while (value != 0);
    return "0x" + text;
}

std::string Attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "='" + value + "'";
}

std::vector<Partition> PartitionsOf(const Product& product) {
    std::vector<Field> bands{{"LowBandEnable", "SKU", 0, 0, 0x0, "None"}, {"HighBandEnable", "SKU", 1, 1, 0x0, "None"}};
    if (product.hasUltraHighBand) bands.push_back({"UltraHighBandEnable", "SKU", 2, 2, 0x0, "None"});
    std::vector<Field> antennas{{"RxAntennaMask", "SKU", 0, 2, 0x0, "None"},
                                {"TxAntennaMask", "SKU", 4, 6, 0x0, "None"}};
    if (product.hasAntennaSwitch) antennas.push_back({"AntennaSwitchFitted", "SKU", 7, 7, 0x0, "None"});
    std::vector<Partition> partitions{
        {"Common",
         3,
         {{"Identity",
           8,
           {{"ContentVersion", "Version", 0, 15, 0x0, "None"}, {"BoardSku", "SKU", 0, 7, 0x2, "NVMBurner"}}}}},
        {"Wifi",
         0,
         {{"MacAddress",
           6,
           {{"MacAddressLow", "Identity", 0, 31, 0x0, "NVMBurner"},
            {"MacAddressHigh", "Identity", 0, 15, 0x4, "NVMBurner"}}},
          {"Antennas", 2, std::move(antennas)},
          {"Bands", 2, std::move(bands)}}},
        {"BT",
         2,
         {{"DeviceAddress",
           6,
           {{"DeviceAddressLow", "Identity", 0, 31, 0x0, "NVMBurner"},
            {"DeviceAddressHigh", "Identity", 0, 15, 0x4, "NVMBurner"}}}}},
    };
    if (product.hasGnss)
        partitions.push_back({"GNSS", 4, {{"Receiver", 2, {{"ReceiverFitted", "SKU", 0, 0, 0x0, "None"}}}}});
    return partitions;
}

std::string FieldElement(const Field& field, unsigned sectionAddress) {
    return "<Field" + Attribute("Name", field.name) + Attribute("Category", field.category) +
           Attribute("StartBit", std::to_string(field.startBit)) + Attribute("StopBit", std::to_string(field.stopBit)) +
           Attribute("ByteOffset", Hex(field.byteOffset)) + Attribute("PreservedField", field.preserved) +
           Attribute("RepresentType", "offset") + Attribute("PhysicalAddress", Hex(sectionAddress + field.byteOffset)) +
           "/>";
}

/// @param address  place of the next section, which moves behind this one
std::string SectionElement(const Section& section, unsigned id, bool hasBurnerName, unsigned& address) {
    std::string xml = "<Section" + Attribute("Name", section.name) + Attribute("SectionID", std::to_string(id)) +
                      Attribute("SectionByteLen", std::to_string(section.byteLength)) +
                      Attribute("PhysicalAddress", Hex(address));
    if (hasBurnerName) xml += Attribute("nvmBurnerSecName", section.name);
    xml += "><Sub-sections><Fields>";
    for (const Field& field : section.fields)
        xml += FieldElement(field, address);
    address += section.byteLength;
    return xml + "</Fields></Sub-sections></Section>";
}

std::string Document(const Product& product) {
    std::string xml = "<NVM_METADATA" + Attribute("Product", product.name);
    if (product.formFactor) xml += Attribute("FormFactor", product.formFactor);
    xml += Attribute("XML-Ver", "1.0") + Attribute("Content-Ver", product.contentVersion) + "><Partitions>";
    unsigned address = 0;
    for (const Partition& partition : PartitionsOf(product)) {
        xml += "<Partition" + Attribute("Name", partition.name) +
               Attribute("PartitionId", std::to_string(partition.id)) + "><Sections>";
        unsigned id = 0;
        for (const Section& section : partition.sections)
            xml += SectionElement(section, id++, product.hasBurnerNames, address);
        xml += "</Sections></Partition>";
    }
    return xml + "</Partitions></NVM_METADATA>";
}

const std::string& DocumentOf(NvmDocument id) {
    static const std::array<std::string, DocumentCount> documents = [] {
        std::array<std::string, DocumentCount> made;
        for (std::size_t k = 0; k < DocumentCount; ++k)
            made[k] = Document(Products[k]);
        return made;
    }();
    return documents[static_cast<std::size_t>(id)];
}

}  // namespace

const std::string* NvmDocumentOfHardware(std::uint32_t hwType) {
    const RadioFacts::HardwareType* hardware = RadioFacts::FindHardware(hwType);
    if (!hardware) throw std::runtime_error("Unknown device");
    return hardware->nvm == NvmDocument::None ? nullptr : &DocumentOf(hardware->nvm);
}
