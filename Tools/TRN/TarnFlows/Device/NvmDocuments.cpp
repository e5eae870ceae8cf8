#include "Device/NvmDocuments.h"

#include <array>
#include <cstddef>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "HardwareTypes.h"
#include "Xml/Writer.h"

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

/// An element for as long as this lives.
class Element {
public:
    Element(XML::IListener& document, const char* name) : m_document(document) { m_document.OpenTag(name); }
    ~Element() { m_document.CloseTag(); }
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;

    Element& With(const char* name, const std::string& value) {
        m_document.Attribute(name, value.c_str());
        return *this;
    }

private:
    XML::IListener& m_document;
};

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

void WriteField(XML::IListener& document, const Field& field, unsigned sectionAddress) {
    Element(document, "Field")
        .With("Name", field.name)
        .With("Category", field.category)
        .With("StartBit", std::to_string(field.startBit))
        .With("StopBit", std::to_string(field.stopBit))
        .With("ByteOffset", Hex(field.byteOffset))
        .With("PreservedField", field.preserved)
        .With("RepresentType", "offset")
        .With("PhysicalAddress", Hex(sectionAddress + field.byteOffset));
}

/// @param address  place of the next section, which moves behind this one
void WriteSection(XML::IListener& document, const Section& section, unsigned id, bool hasBurnerName,
                  unsigned& address) {
    Element element(document, "Section");
    element.With("Name", section.name)
        .With("SectionID", std::to_string(id))
        .With("SectionByteLen", std::to_string(section.byteLength))
        .With("PhysicalAddress", Hex(address));
    if (hasBurnerName) element.With("nvmBurnerSecName", section.name);
    const Element subSections(document, "Sub-sections"), fields(document, "Fields");
    for (const Field& field : section.fields)
        WriteField(document, field, address);
    address += section.byteLength;
}

void WriteProduct(XML::IListener& document, const Product& product) {
    Element metadata(document, "NVM_METADATA");
    metadata.With("Product", product.name);
    if (product.formFactor) metadata.With("FormFactor", product.formFactor);
    metadata.With("XML-Ver", "1.0").With("Content-Ver", product.contentVersion);
    const Element partitions(document, "Partitions");
    unsigned address = 0;
    for (const Partition& partition : PartitionsOf(product)) {
        Element element(document, "Partition");
        element.With("Name", partition.name).With("PartitionId", std::to_string(partition.id));
        const Element sections(document, "Sections");
        unsigned id = 0;
        for (const Section& section : partition.sections)
            WriteSection(document, section, id++, product.hasBurnerNames, address);
    }
}

std::string Document(const Product& product) {
    std::ostringstream text;
    XML::Writer writer(text, {.layout = XML::WriterStyle::Layout::OneLine, .quote = '\''});
    WriteProduct(writer, product);
    return text.str();
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
