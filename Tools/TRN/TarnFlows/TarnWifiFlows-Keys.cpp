// The operations behind the keys; what else there is to know of a key, and their order, stands in TarnKeys.
#include <array>

#include "Streams/Trace.h"
#include "Support/FlowKeys.h"
#include "TarnWifiFlows.h"

namespace {

constexpr auto CommonKeys = std::to_array<KeyOperation<TarnCommonFlows>>({
    {"-channel_average_sweep_val", &TarnCommonFlows::SetChannelAverageSweepVal},
    {"-maxhold", &TarnCommonFlows::SetMaxHold},
    {"-histogram", &TarnCommonFlows::SetHistogram},
    {"-frequency_compensation", &TarnCommonFlows::SetFrequencyCompensation},
    {"-channel_average", &TarnCommonFlows::SetChannelAverage},
    {"-get_channel_average", &TarnCommonFlows::GetChannelAverage},
    {"-channel_average_counter", &TarnCommonFlows::SetChannelAverageCounter},
    {"-update_spectrum", &TarnCommonFlows::UpdateSpectrum},
    {"-update_iq", &TarnCommonFlows::UpdateIQ},
    {"-update_maxhold", &TarnCommonFlows::UpdateMaxHold},
    {"-update_channel_average", &TarnCommonFlows::UpdateChannelAverage},
    {"-clear_average", &TarnCommonFlows::ClearAverage},
    {"-update_histogram", &TarnCommonFlows::UpdateHistogram},
    {"-get_power_per_chain", &TarnCommonFlows::GetPowerByChain},
    {"-save_spectrum", &TarnCommonFlows::SaveSpectrum},
    {"-save_IQ", &TarnCommonFlows::SaveIQ},
    {"-save_maxhold", &TarnCommonFlows::SaveMaxHold},
});

constexpr auto WifiKeys = std::to_array<KeyOperation<TarnWifiFlows>>({
    {"-get_supported_config", &TarnWifiFlows::SupportedConfigToString},
    {"-reset_config", &TarnWifiFlows::ResetConfig},
    {"-band", &TarnWifiFlows::SetBand},
    {"-bandwidth", &TarnWifiFlows::SetBandwidth},
    {"-channel", &TarnWifiFlows::SetChannel},
    {"-gain_file_name", &TarnWifiFlows::SetGainFileLoadingParams},
    {"-set_gain_from_file", &TarnWifiFlows::SetGainFromFile},
    {"-reset_first_run_flags", &TarnWifiFlows::ResetFirstRunFlags},
    {"-internal_gain", &TarnWifiFlows::SetInternalGain},
    {"-preLNA_resistor", &TarnWifiFlows::SetPreLnaResistor},
    {"-external_gain", &TarnWifiFlows::SetExternalGain},
    {"-chain", &TarnWifiFlows::SetChain},
    {"-rbw", &TarnWifiFlows::SetRbw},
    {"-power_deembedding", &TarnWifiFlows::SetPowerDeembedding},
    {"-noise_floor", &TarnWifiFlows::SetNoiseFloor},
    {"-save_rbw_power", &TarnWifiFlows::SaveSpectrumByRBW},
    {"-find_peaks", &TarnWifiFlows::FindPeaks},
    {"-update_peaks", &TarnWifiFlows::UpdatePeaksData},
    {"-save_peaks", &TarnWifiFlows::SavePeaks},
    {"-save_all", &TarnWifiFlows::SaveAll},
    {"-load_all", &TarnWifiFlows::LoadAll},
    {"-read_adc_samples_from_file", &TarnWifiFlows::ReadADCSamplesFromFile},
    {"-get_supported_channels", &TarnWifiFlows::GetSupportedChannels},
    {"-get_supported_chains", &TarnWifiFlows::GetSupportedChains},
    {"-mcc_profile", &TarnWifiFlows::SetMccValue},
    {"-set_mcc", &TarnWifiFlows::ReloadMccProfile},
    {"-vesper_iterations", &TarnWifiFlows::SetVesperIterations},
    {"-vesper_current_iteration", &TarnWifiFlows::SetCurrentVesperIteration},
    {"-clear_freq_power_data", &TarnWifiFlows::ClearFreqPowerData},
    {"-get_platform_info", &TarnWifiFlows::GetPlatformInfo},
    {"-set_chain_mode", &TarnWifiFlows::SetChainMode},
    {"-dump_vesper_data", &TarnWifiFlows::DumpVesperData},
    {"-export_vesper_result", &TarnWifiFlows::ExportVesperResult},
    {"-vesper_disable_bit", &TarnWifiFlows::DisableBurnInTest},
    {"-vesper_get_channel_data", &TarnWifiFlows::GetChannelGraphDataForVesper},
    {"-vesper_set_config_file", &TarnWifiFlows::SetVesperSettingsFromConfigFile},
    {"-vesper_set_delay", &TarnWifiFlows::SetVesperDelay},
    {"-vesper_save_test_messages", &TarnWifiFlows::SaveVesperTestMessages},
    {"-start_vesper_test", &TarnWifiFlows::StartVesperTest},
    {"-stop_vesper_test", &TarnWifiFlows::StopVesperTest},
    {"-resume_vesper_test", &TarnWifiFlows::ResumeVesperTest},
    {"-trigger_now", &TarnWifiFlows::TriggerNow},
    {"-export_freq_power", &TarnWifiFlows::ExportAllFreqPowerData},
});

}  // namespace

void TarnCommonFlows::Init() {
    TRACE_SCOPE("TarnCommonFlows::Init");
    FlowKeys::Add<TarnCommonFlows>(*this, CommonKeys);
}

void TarnWifiFlows::RegisterKeys() {
    for (const TarnKeys::KeyRow& row : TarnKeys::Keys())
        if (!FlowKeys::Find<TarnCommonFlows>(CommonKeys, row.name) &&
            !FlowKeys::Find<TarnWifiFlows>(WifiKeys, row.name))
            throw std::logic_error("No operation for the key " + std::string(row.name));
    FlowKeys::Add<TarnWifiFlows>(*this, WifiKeys);
}
