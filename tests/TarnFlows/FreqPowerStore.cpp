// The frequency-power store, its CSV table to the byte, and the memory documents.
#include "Stores/FreqPowerStore.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <stdexcept>

#include "Device/NvmDocuments.h"
#include "Support/TempFolder.h"
#include "Xml/Base.h"

namespace {

std::string Csv(const FreqPowerStore& store) {
    std::exception_ptr failure;
    const std::string csv = store.ToCsv(failure);
    return failure ? csv + "(a channel is missing)" : csv;
}

TEST(FreqPowerStore, TheTableHoldsEveryTriggerInKeyOrder) {
    FreqPowerStore store;
    EXPECT_EQ(Csv(store), "BW, Channel, RBW\n\n");
    store.Store({1, 1, 38}, {2, -71.25, 0, 78.125, "t4"});
    store.Store({1, 0, 36}, {1, -70.123456, 0, 39.0625, "t1"});
    store.Store({1, 0, 36}, {3, -65, -1e-7, 39.0625, "t2"});
    store.Store({1, 0, 36}, {2, -66.5, -99, 312.5, "t3"});
    store.Store({0, 0, 14}, {1, -1234567, 0, 39.0625, "t0"});
    const std::string group = ", Chain A Power, Chain B Power, Trigger Time";
    const std::string expected = "BW, Channel, RBW" + group + group + group +
                                 "\n20MHz, 14 (2484 MHz), 39.0625, -1.23457e+06, None, t0\n"
                                 "20MHz, 36 (5180 MHz), 312.5, -70.1235, None, t1, -65, -1e-07, t2, None, -66.5, t3\n"
                                 "40MHz, 38 (5190 MHz), 78.125, None, -71.25, t4\n\n";
    EXPECT_EQ(Csv(store), expected);

    const Support::TempFolder folder;
    store.Write(folder.Write("table.csv", std::string(100000, 'x')));
    EXPECT_EQ(folder.Read("table.csv"), expected);
    EXPECT_NO_THROW(store.Write(folder / "no/such/folder/table.csv"));

    store.Clear();
    EXPECT_EQ(Csv(store), "BW, Channel, RBW\n\n");
}

TEST(FreqPowerStore, EntriesWithShortListsAreWrittenAsFarAsTheyGo) {
    FreqPowerStore store;
    store.GetEntries()[{0, 0, 1}].chainA = {"-70", "-71"};
    store.GetEntries()[{0, 0, 1}].chainB = {"None"};
    EXPECT_EQ(Csv(store), "BW, Channel, RBW\n20MHz, 1 (2412 MHz), , -70, None, , -71, , \n\n");
    store.GetEntries()[{0, 3, 1}] = {};
    EXPECT_TRUE(Csv(store).ends_with("(a channel is missing)"));
}

TEST(FreqPowerStore, AnAverageOfNoSweepsIsNeverComplete) {
    for (std::int64_t sweeps : {0, -1})
        EXPECT_FALSE(FreqPowerStore::IsTriggerDue(true, false, -1, sweeps));
    EXPECT_FALSE(FreqPowerStore::IsTriggerDue(true, false, INT64_C(0xFFFFFFFE), 2));
}

TEST(NvmDocuments, TheHardwareChoosesADocumentOfItsFamilyOrNone) {
    const struct {
        std::vector<std::uint32_t> hardware;
        std::string root;
        std::size_t partitions;
    } families[] = {{{11, 12, 13, 14, 15}, "'Teak' XML-Ver='1.0' Content-Ver='0xA356'>", 4},
                    {{16, 17, 24}, "'Fir' FormFactor='1.0' XML-Ver='1.0' Content-Ver='0xA435'>", 3},
                    {{20}, "'Yew' FormFactor='Module SKU' XML-Ver='1.0' Content-Ver='0xA492'>", 3},
                    {{21, 22, 25, 28}, "'Ash' FormFactor='Module SKU' XML-Ver='1.0' Content-Ver='0xA626'>", 3},
                    {{23}, "'Ash4' FormFactor='Module SKU' XML-Ver='1.0' Content-Ver='0xA640'>", 3},
                    {{5, 6, 7, 8, 9, 26, 27, 29, 30}, "", 0}};
    std::set<std::uint32_t> known;
    for (const auto& family : families)
        for (std::uint32_t hardware : family.hardware) {
            known.insert(hardware);
            const std::string* document = NvmDocumentOfHardware(hardware);
            ASSERT_EQ(document != nullptr, !family.root.empty()) << hardware;
            if (!document) continue;
            EXPECT_TRUE(document->starts_with("<NVM_METADATA Product=" + family.root)) << document->substr(0, 100);
            EXPECT_EQ(document->find_first_of("\n\""), std::string::npos);
            XML::Base tree;
            std::istringstream stream(*document);
            ASSERT_FALSE(tree.Load(stream, true).fail()) << hardware;
            EXPECT_EQ(tree.GetRoot()->FindAll("NVM_METADATA/Partitions/Partition").size(), family.partitions);
        }
    EXPECT_NE(*NvmDocumentOfHardware(21), *NvmDocumentOfHardware(22)) << "Ash and Bay differ in their fields";
    for (std::uint32_t hardware = 0; hardware < 40; ++hardware)
        if (!known.contains(hardware)) {
            EXPECT_THROW(NvmDocumentOfHardware(hardware), std::runtime_error) << hardware;
        }
}

}  // namespace
