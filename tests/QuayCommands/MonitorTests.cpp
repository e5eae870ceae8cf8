// The journal and the fault plan.
#include "TestRadio.h"

#include <functional>

#include "Exceptions.h"
#include "QuayExceptions.h"

using namespace radiotest;
using namespace quayCommand;

namespace {

/// A call of each operation with arguments that a journal can tell apart, and the line it must leave.
struct Call {
    std::string line;
    std::function<void()> make;
};

std::vector<Call> EveryCall() {
    static std::vector<std::vector<double>> values(6, std::vector<double>(1024));
    static double* i[3] = {values[0].data(), values[1].data(), values[2].data()};
    static double* q[3] = {values[3].data(), values[4].data(), values[5].data()};
    static std::vector<std::uint8_t> metadata(CaptureMetadataBytes);
    static auto* wifi = static_cast<IWifiCommands*>(nullptr);
    static auto* nvm = static_cast<NvmCommands*>(nullptr);
    static auto* adc = static_cast<IAdcCommands*>(nullptr);
    static auto* info = static_cast<IDeviceInfo*>(nullptr);
    wifi = CommandFactory::GetInstance().getWifiInstance();
    nvm = CommandFactory::GetInstance().getNvmInstance();

    static RxConfig rx;
    rx = {36, 1, 13, 3, 2, 0, 2, 2, 0x0000000700000008u, 3, {}};
    rx.rest[24] = 99;
    static GainConfig gainA;
    gainA = {1, 0, {}, 0x0000000500000006u};
    gainA.chains[0] = {10, 11, 12, 13, 1.0};
    gainA.chains[1] = {20, 21, 22, 23, 0.0};
    static std::array<std::uint32_t, 2> two;
    static std::array<std::uint32_t, 4> four;
    static std::array<char, 256> text;
    static CaptureState state;
    static std::string mac;
    // clang-format off
    return {
        {"IsConnected", [] { wifi->IsConnected(); }}, {"GetCardType", [] { wifi->GetCardType(); }},
        {"GetHwType", [] { wifi->GetHwType(); }}, {"GetPlatformDeviceId", [] { wifi->GetPlatformDeviceId(); }},
        {"GetVendorId", [] { wifi->GetVendorId(); }}, {"GetSubsystemId", [] { wifi->GetSubsystemId(); }},
        {"GetRevisionId", [] { wifi->GetRevisionId(); }}, {"GetAdcObject", [] { adc = wifi->GetAdcObject(); }},
        {"GetDeviceInfo", [] { info = wifi->GetDeviceInfo(); }}, {"SetLmac 2", [] { wifi->SetLmac(2); }},
        {"ResetAdapter", [] { wifi->ResetAdapter(); }}, {"Reload", [] { info->Reload(); }},
        {"GetSupportedBands", [] { info->GetSupportedBands(); }}, {"GetAntennaMask", [] { info->GetAntennaMask(); }},
        {"ConfigTxRx 36 1 13 3 2 0 2 2 8 7 3 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 99",
         [] { adc->ConfigTxRx(&rx); }},
        {"StartStopAllPeriodicCalibrations", [] { adc->StartStopAllPeriodicCalibrations(); }},
        {"SetCaptureMode 1", [] { adc->SetCaptureMode(true); }},
        {"PrepareCaptureA 2", [] { adc->PrepareCaptureA({2}); }},
        {"PrepareCaptureB 0 2 0 0 0 0 0 0 0 0 0 0 0 0 0", [] { adc->PrepareCaptureB({0, 2}); }},
        // 1.0 as a double is 0x3FF00000 in its upper word.
        {"SetManualGainA 1 0 10 11 12 13 0 1072693248 20 21 22 23 0 0 0 0 0 0 0 0 6 5",
         [] { adc->SetManualGainA(gainA); }},
        {"SetManualGainB 1 2 3 4 5 6 7 8 9 10 11 12",
         [] { adc->SetManualGainB({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}); }},
        {"SetManualGainC 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15",
         [] { adc->SetManualGainC({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}); }},
        {"GetCaptureLength", [] { adc->GetCaptureLength(); }}, {"GetCaptureState", [] { adc->GetCaptureState(state); }},
        {"SetCaptureDescriptorA 1 2 0 0 65536 0 0 131072 10 2 0",
         [] { adc->SetCaptureDescriptorA({1, 2, 0, 0, 0x10000, 0, 0, 0x20000, 10, 2, 0}); }},
        {"SetCaptureDescriptorB 1 2 0 1073741824 0 0 2147483648 0 10 2 0 0",
         [] { adc->SetCaptureDescriptorB({1, 2, 0, 0x40000000, 0, 0, 0x80000000, 0, 10, 2, 0, 0}); }},
        {"SetCaptureDescriptorC 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 4294967295",
         [] { adc->SetCaptureDescriptorC({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 0xFFFFFFFF}); }},
        {"SetCaptureDescriptorD 1 3 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0", [] { adc->SetCaptureDescriptorD({1, 3}); }},
        {"SetCaptureSource 3 1 0 2 0 1 0 0 0 0 0 0 0 0", [] { adc->SetCaptureSource({3, 1, 0, 2, 0, 1}); }},
        {"ReadCapture 0 5000 2 0", [] { adc->ReadCapture({0, 5000, 2, 0}, i, q); }},
        {"ReadCaptureEx 0 5000 2 2", [] { adc->ReadCaptureEx({0, 5000, 2, 2}, i, q, metadata.data()); }},
        {"GetBoardSku", [] { adc->GetBoardSku(); }}, {"GetUcodeVersion", [] { adc->GetUcodeVersion(two); }},
        {"GetDriverVersion", [] { adc->GetDriverVersion(text); }}, {"GetUscVersion", [] { adc->GetUscVersion(four); }},
        {"GetSVDriverVersion", [] { adc->GetSVDriverVersion(four); }},
        {"SetMetadata 11", [] { nvm->SetMetadata("<NVM>\n</NVM"); }},
        {"GetMacAddress", [] { nvm->GetMacAddress(mac); }},
        {"IsBandEnabled 1", [] { nvm->IsBandEnabled(1); }},
        {"IsChannelSupported 36 2 1", [] { nvm->IsChannelSupported(36, 2, 1); }},
        {"SetMcc 21843 1", [] { nvm->SetMcc(0x5553, true); }}, {"ApplyMcc", [] { nvm->ApplyMcc(); }},
    };
    // clang-format on
}

TEST(Journal, EachOperationLeavesItsNameAndItsWordsAtOnce) {
    const Folder folder;
    ASSERT_EQ(ReasonOf({"samples=1024", "sim:quiet", folder.Write("calls.txt", "old content"), ""}), "accepted");
    std::vector<std::string> names;
    std::string expected;
    for (const auto& call : EveryCall()) {
        call.make();
        expected += call.line + "\n";
        ASSERT_EQ(folder.Read("calls.txt"), expected) << "each line is on disk when the call returns";
        names.push_back(call.line.substr(0, call.line.find(' ')));
    }
    EXPECT_EQ(names, RadioOperationNames()) << "every operation is covered here";
    EXPECT_FALSE(RadioTrouble());
}

TEST(Journal, OneThatCannotBeWrittenIsRefusedOrReportedLater) {
    const Folder folder;
    UseRadio("seed=4", "sim:quiet");
    const std::string why = ": can't be opened for writing; a link or a pipe can be no journal";
    std::filesystem::create_symlink(folder.Write("target.txt", "kept"), folder / "link");
    for (const std::string& path : {folder / "none/calls.txt", folder / "link"})
        EXPECT_EQ(ReasonOf({"", "", path, ""}), "journal: " + path + why);
    EXPECT_EQ(folder.Read("target.txt"), "kept");
    EXPECT_NE(DescribeAdapter().find("seed=4"), std::string::npos) << "the adapter before stays";
    EXPECT_NE(ReasonOf({"hw=x", "", folder.Write("kept.txt", "kept"), ""}), "accepted");
    EXPECT_EQ(folder.Read("kept.txt"), "kept") << "a refused set-up empties no journal";
    if (std::filesystem::exists("/dev/full")) {
        ASSERT_EQ(ReasonOf({"", "sim:quiet", "/dev/full", ""}), "accepted");
        EXPECT_FALSE(RadioTrouble());
        CommandFactory::GetInstance().getWifiInstance()->SetLmac(0);
        EXPECT_EQ(RadioTrouble(), "journal: /dev/full: a line can't be written; it ends before SetLmac");
    }
}

TEST(Faults, TheChosenCallOfAnyOperationFailsAndIsInTheJournalAndNoOtherFails) {
    const Folder folder;
    for (std::size_t k = 0; k < RadioOperationNames().size(); ++k) {
        const auto name = RadioOperationNames()[k];
        ASSERT_EQ(ReasonOf({"samples=1024", "sim:quiet", (folder / "calls.txt"), name + ":2"}), "accepted");
        const auto calls = EveryCall();
        for (const auto& call : calls)
            EXPECT_NO_THROW(call.make()) << name;
        EXPECT_THROW(calls[k].make(), Common::Exception) << name;
        EXPECT_NO_THROW(calls[k].make()) << name << ", third call";
        const auto text = folder.Read("calls.txt");
        const auto line = calls[k].line + "\n";
        EXPECT_TRUE(text.ends_with(line + line)) << name;
    }
}

TEST(Faults, KindsAndEachCallWorkAsWritten) {
    ASSERT_EQ(
        ReasonOf({"samples=1024", "sim:quiet", "", "SetLmac:1:quay,SetLmac:2:std,SetLmac:3:common,ResetAdapter:*"}),
        "accepted");
    auto* wifi = CommandFactory::GetInstance().getWifiInstance();
    EXPECT_THROW(wifi->SetLmac(0), CQuayMsgException);
    EXPECT_THROW(wifi->SetLmac(0), std::runtime_error);
    try {
        wifi->SetLmac(0);
        FAIL() << "no fault";
    } catch (const Common::Exception& fault) {
        EXPECT_STREQ(fault.what(), "simulated fault at call 3 of SetLmac");
    }
    EXPECT_NO_THROW(wifi->SetLmac(0));
    for (int n = 0; n < 3; ++n)
        EXPECT_THROW(wifi->ResetAdapter(), Common::Exception);
}

TEST(Faults, ABadPlanIsRefusedWithItsEntry) {
    for (const auto& [plan, reason] : std::vector<std::pair<std::string, std::string>>{
             {"SetLmak:1", "SetLmak:1: unknown operation \"SetLmak\"; the nearest are SetLmac, SetMcc, Reload"},
             {"setlmac:1", "setlmac:1: unknown operation \"setlmac\"; the nearest are SetLmac, SetMcc, Reload"},
             {"SetLmac", "SetLmac: isn't OPERATION:N or OPERATION:N:KIND"},
             {"SetLmac:0", "SetLmac:0: \"0\" is neither a call counted from 1 nor *"},
             {"SetLmac:x", "SetLmac:x: \"x\" is neither a call counted from 1 nor *"},
             {"SetLmac:1:boom", "SetLmac:1:boom: unknown kind \"boom\"; the kinds are common, quay, std"},
             {"SetLmac:1,SetLmac:1:std", "SetLmac:1:std: is given twice"},
             {"SetLmac:1,", ": isn't OPERATION:N or OPERATION:N:KIND"},
         })
        EXPECT_EQ(ReasonOf({"", "sim:quiet", "", plan}), "faults: " + reason);
}

}  // namespace
