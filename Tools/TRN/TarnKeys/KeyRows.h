// The rows of the key table, in the order in which keys take effect: the operation, then the fields of its KeyRow.
// Whoever includes them says what a row is: KeyTable.cpp drops the operation, which is a member of the plug-in's flow
// classes, and the plug-in takes no more than it and the name. Hence no include guard.
COMMON_KEY(SetChannelAverageSweepVal, "-channel_average_sweep_val", Sets, {Int, "SWEEPS"}, Analysis,
           "sweeps of one averaging run, 1 to 100", Spoils)
COMMON_KEY(SetMaxHold, "-maxhold", Sets, FlagText, Analysis,
           "keep the largest value of each bin; channel power is then taken from it", Spoils)
COMMON_KEY(SetHistogram, "-histogram", Sets, FlagText, Analysis, "count the ADC codes of each sweep in 20 buckets")
COMMON_KEY(SetFrequencyCompensation, "-frequency_compensation", Sets, FlagText, Analysis,
           "lift the receiver filter's edges back up")
COMMON_KEY(SetChannelAverage, "-channel_average", Sets, FlagText, Analysis,
           "average sweeps; channel power is then taken from the average", Spoils)
COMMON_KEY(GetChannelAverage, "-get_channel_average", Tells, None, Analysis, "tell whether averaging is on")
COMMON_KEY(SetChannelAverageCounter, "-channel_average_counter", Acts, {Text, "N,N,N"}, Analysis,
           "sweeps that each chain's average already holds, 0 to 99", Spoils)
COMMON_KEY(UpdateSpectrum, "-update_spectrum", ReadsOut, None, Look, "last spectrum, dBm in each bin, a line a chain")
COMMON_KEY(UpdateIQ, "-update_iq", ReadsOut, None, Look, "last sweep's I and Q, ADC codes, two lines a chain")
COMMON_KEY(UpdateMaxHold, "-update_maxhold", ReadsOut, None, Look,
           "max hold of the channel, dBm in each bin, a line a chain")
COMMON_KEY(UpdateChannelAverage, "-update_channel_average", ReadsOut, None, Look,
           "average, dBm in each bin, a line a chain")
COMMON_KEY(ClearAverage, "-clear_average", Acts, None, Analysis, "start the average again", Spoils)
COMMON_KEY(UpdateHistogram, "-update_histogram", ReadsOut, None, Look,
           "counts of I and Q together, I, Q, then the range, four lines a chain")
COMMON_KEY(GetPowerByChain, "-get_power_per_chain", ReadsOut, {Text, "CHAIN", "A|B"}, Look,
           "channel power of one chain, dBm over the channel")
COMMON_KEY(SaveSpectrum, "-save_spectrum", WritesFile, FileName, Files, "write the last spectrum")
COMMON_KEY(SaveIQ, "-save_IQ", WritesFile, FileName, Files, "write the last sweep's samples")
COMMON_KEY(SaveMaxHold, "-save_maxhold", WritesFile, FileName, Files, "write the max hold")
WIFI_KEY(SupportedConfigToString, "-get_supported_config", Tells, None, Device,
         "ids, versions and the channels this device supports")
WIFI_KEY(ResetConfig, "-reset_config", Acts, None, Setting, "back to band 2.4, 20 MHz, channel 1, chain A", Spoils,
         Tuning)
WIFI_KEY(SetBand, "-band", Sets, {Text, "BAND", RadioFacts::BandChoices}, Setting, "band in GHz", Spoils,
         "-bandwidth|-channel")
WIFI_KEY(SetBandwidth, "-bandwidth", Sets, {Text, "MHZ", RadioFacts::BandwidthChoices}, Setting, "channel width in MHz",
         Spoils, "-channel")
WIFI_KEY(SetChannel, "-channel", Sets, {Int, "NUMBER"}, Setting, "channel number in the band and at the width set",
         Spoils)
WIFI_KEY(SetGainFileLoadingParams, "-gain_file_name", Sets, FileName, Gain,
         "read a table of gains by device, chain, frequency and width")
WIFI_KEY(SetGainFromFile, "-set_gain_from_file", Acts, None, Gain,
         "look the current setting up in the gain file and use it")
WIFI_KEY(ResetFirstRunFlags, "-reset_first_run_flags", Acts, None, Setting,
         "apply the next settings even where they don't change")
WIFI_KEY(SetInternalGain, "-internal_gain", Sets, {Int, "INDEX", "0|1|2|3|4|5"}, Gain,
         "receiver gain index, 0 to 5; a higher index is less gain")
WIFI_KEY(SetPreLnaResistor, "-preLNA_resistor", Sets, FlagText, Gain, "resistor before the low-noise amplifier")
WIFI_KEY(SetExternalGain, "-external_gain", Sets, FlagText, Gain,
         "outside amplifier; only false is supported on current adapters")
WIFI_KEY(SetChain, "-chain", Sets, {Text, "CHAIN", "A|B|AB"}, Setting, "receive chain", Spoils)
WIFI_KEY(SetRbw, "-rbw", Sets, {Double, "KHZ", "39.0625|78.125|156.25|312.5"}, Setting,
         "resolution bandwidth in kHz: width of a bin", Spoils)
WIFI_KEY(SetPowerDeembedding, "-power_deembedding", Sets, FlagText, Gain, "take the noise floor off the channel power")
WIFI_KEY(SetNoiseFloor, "-noise_floor", Sets, {Text, "DB,DB,DB"}, Gain, "noise floor of each band in dBm, -160 to -1")
WIFI_KEY(SaveSpectrumByRBW, "-save_rbw_power", WritesFile, FileName, Files,
         "write power and frequency of each bin of the channel")
WIFI_KEY(FindPeaks, "-find_peaks", ReadsOut, {Int, "BINS"}, Look, "search peaks with slices of 5 to 80 bins")
WIFI_KEY(UpdatePeaksData, "-update_peaks", ReadsOut, None, Look, "found peaks: frequency in MHz and power")
WIFI_KEY(SavePeaks, "-save_peaks", WritesFile, FileName, Files, "write the found peaks")
WIFI_KEY(SaveAll, "-save_all", WritesFile, FileName, Files, "write the whole measurement state as one table")
WIFI_KEY(LoadAll, "-load_all", Acts, FileName, Files, "bring a saved measurement state back", Spoils, Tuning)
WIFI_KEY(ReadADCSamplesFromFile, "-read_adc_samples_from_file", Acts, {Folder, "FOLDER"}, Files,
         "analyse stored sample files into result.csv", Spoils)
WIFI_KEY(GetSupportedChannels, "-get_supported_channels", Tells, None, Device, "channels as a message for a front-end")
WIFI_KEY(GetSupportedChains, "-get_supported_chains", Tells, None, Device, "chains as a message for a front-end")
WIFI_KEY(SetMccValue, "-mcc_profile", Acts, {Text, "COUNTRY"}, Device, "two-letter country for the next -set_mcc")
WIFI_KEY(ReloadMccProfile, "-set_mcc", Acts, None, Device, "load the country's profile; resets the settings", Spoils,
         Tuning)
WIFI_KEY(SetVesperIterations, "-vesper_iterations", Sets, {Int, "SWEEPS"}, Desense,
         "sweeps of each channel and chain, 1 to 100", Spoils)
WIFI_KEY(SetCurrentVesperIteration, "-vesper_current_iteration", Acts, {Int, "NUMBER"}, Desense,
         "iteration that the next trigger counts as; 1 clears max hold and average", Spoils)
WIFI_KEY(ClearFreqPowerData, "-clear_freq_power_data", Acts, None, Run, "forget the stored channel powers")
WIFI_KEY(GetPlatformInfo, "-get_platform_info", Tells, None, Device, "the computer that this runs on")
WIFI_KEY(SetChainMode, "-set_chain_mode", Sets, {Text, "MODE", "A|B|AB|A->B"}, Desense,
         "chains of the test: one, both at once, or A and then B", Spoils)
WIFI_KEY(DumpVesperData, "-dump_vesper_data", WritesFile, FileName, Desense,
         "write average and maximum of every bin of the test")
WIFI_KEY(ExportVesperResult, "-export_vesper_result", WritesFile, FileName, Desense,
         "write each channel's desense in dB and its spurs")
WIFI_KEY(DisableBurnInTest, "-vesper_disable_bit", Sets, FlagText, Desense, "run the test without its workload", Spoils)
WIFI_KEY(GetChannelGraphDataForVesper, "-vesper_get_channel_data", Tells, {Text, "CHANNEL,BAND"}, Desense,
         "a channel's bins as a message for a front-end; band 0, 1 or 2")
WIFI_KEY(SetVesperSettingsFromConfigFile, "-vesper_set_config_file", Sets, FileName, Desense,
         "settings of the test out of nine lines KEY,VALUE", Spoils)
WIFI_KEY(SetVesperDelay, "-vesper_set_delay", Sets, {Int, "SECONDS"}, Desense,
         "wait before the test starts, 0 to 100 s", Spoils)
WIFI_KEY(SaveVesperTestMessages, "-vesper_save_test_messages", WritesFile, FileName, Desense,
         "write the test's messages")
WIFI_KEY(StartVesperTest, "-start_vesper_test", Acts, None, Desense, "start the workload and the test", Spoils,
         TestTuning)
WIFI_KEY(StopVesperTest, "-stop_vesper_test", Acts, None, Desense, "end the test and its workload", Spoils)
WIFI_KEY(ResumeVesperTest, "-resume_vesper_test", Acts, None, Desense,
         "start the workload again and go on with the test", Spoils)
WIFI_KEY(TriggerNow, "-trigger_now", Triggers, None, Run, "capture and analyse one sweep", Spoils)
WIFI_KEY(ExportAllFreqPowerData, "-export_freq_power", WritesFile, FileName, Files,
         "write the channel powers of all triggers as a table")
