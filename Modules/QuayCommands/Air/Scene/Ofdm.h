// Wi-Fi frames as OFDM: which subcarriers are in use, and the samples of a frame at a receiver's rate and tuning.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "Air/Scene/Fft.h"
#include "Air/Scene/SceneSignal.h"

namespace quayCommand {

constexpr double SubcarrierMhz = 0.3125;

/// One value on one subcarrier, counted from the channel's centre in steps of 312.5 kHz.
struct Subcarrier {
    int number;
    Complex value;
};

/// Subcarriers that carry data in a channel of `widthMhz` (20 to 320), in rising order: 56 in 20 MHz (52 for `legacy`),
/// 114 in 40, 242 in 80; 160 and 320 MHz are two and four times the 80.
std::vector<int> DataSubcarriers(unsigned widthMhz, bool legacy);

/// The short and the long training field of IEEE 802.11 (17.3.3), repeated on each 20 MHz of the channel and turned
/// there by the signs of the wide formats. Mean power 1.
std::vector<Subcarrier> ShortTraining(unsigned widthMhz);
std::vector<Subcarrier> LongTraining(unsigned widthMhz);

/// A frame: 8 us short training, 8 us long training, a signal symbol, and data symbols of 4 us each.
struct OfdmFrame {
    unsigned lengthUs = 24;  ///< a multiple of 4
    std::uint64_t seed = 0;  ///< of the data
};

/// Makes the frames of one channel as one receiver hears them. Subcarriers beyond the receiver's span are left out. One
/// symbol fades into the next (IEEE 802.11, 17.3.2.5): a hard edge would have skirts without end, which sampling folds
/// back to the far side of the span. Subcarriers next to the end of the span fade more slowly, in the place of the
/// receiver's filter, so that their skirts don't reach beyond it.
class OfdmTransmitter {
public:
    /// @param offsetMhz  centre of the channel, from the centre of the receiver
    /// @param sampleRateMhz  a multiple of 20
    OfdmTransmitter(unsigned widthMhz, bool legacy, double offsetMhz, double sampleRateMhz);

    /// False when no subcarrier lies within the receiver's span.
    bool IsHeard() const { return m_groups[0].isHeard || m_groups[1].isHeard; }

    /// Adds a frame that begins at sample `first` (before the capture, if negative), its mean power being
    /// `amplitude` squared.
    void AddFrame(SceneSignal& signal, const OfdmFrame& frame, std::ptrdiff_t first, double amplitude,
                  const SourceLevel& level);

private:
    /// One field of the frame: so many samples of a period that repeats, starting `lead` samples before its origin.
    struct Field {
        std::ptrdiff_t first;
        std::size_t samples;
        std::size_t lead;
    };
    /// Subcarriers that share a fade.
    struct Group {
        std::vector<double> fade;  ///< weights of a field's first samples, which begin half of the fade before it
        std::vector<bool> bins;    ///< of the transform
        bool isHeard = false;
    };
    /// Load the transform with one period of a field.
    void Clear();
    void Put(const Group& group, const Subcarrier& carrier);
    void Load(const Group& group, const std::vector<Subcarrier>& subcarriers);
    void LoadData(const Group& group, std::uint64_t seed, bool signalSymbol);
    void AddField(SceneSignal& signal, const Group& group, const Field& field, std::ptrdiff_t frameStart,
                  double amplitude, const SourceLevel& level);
    void AddGroup(SceneSignal& signal, const Group& group, const OfdmFrame& frame, std::ptrdiff_t first,
                  double amplitude, const SourceLevel& level);
    /// Bin of the transform of a subcarrier; the transform's size for one beyond the span.
    std::size_t BinOf(int number) const;

    std::size_t m_symbolSamples;  ///< in 4 us, a symbol with its cyclic prefix
    int m_shift;                  ///< whole subcarriers of the offset
    double m_turnsPerSample;      ///< the rest of the offset, as a rotation
    InverseFft m_fft;
    std::vector<Subcarrier> m_short, m_long;
    std::vector<int> m_data, m_signalData;
    std::array<Group, 2> m_groups;  ///< inner, next to the end of the span
};

}  // namespace quayCommand
