#include "Picture.h"

#include <algorithm>
#include <cmath>

#include "Axes.h"
#include "Canvas.h"
#include "Report.h"

namespace TarnMeasure {
namespace {

constexpr double pageWidth = 900, margin = 60, panelHeight = 330, headHeight = 84, footLine = 11;

/// Levels to show: all graphs with some room, in whole tens.
Range LevelRange(const Result& result) {
    Range range{1e9, -1e9};
    const auto widen = [&](double value) {
        if (!std::isfinite(value) || std::abs(value) > 1000) return;
        range = {std::min(range.low, value), std::max(range.high, value)};
    };
    for (const ChannelResult& channel : result.channels)
        for (const ChainResult& chain : channel.chains) {
            for (const auto* graph : {&chain.spectrum, &chain.maxHold, &chain.average})
                for (const double value : *graph)
                    widen(value);
            widen(chain.power_dbm);
            if (chain.judgement) widen(chain.judgement->limit_dbm);
        }
    if (range.low > range.high) return {-120, -20};
    range.low = std::max(range.low, range.high - 110);  // a lone empty bin must not squeeze everything else
    return {std::floor((range.low - 2) / 10) * 10, std::ceil((range.high + 6) / 10) * 10};
}

std::string BinTitle(const Result& result) {
    return "dBm / " + ShortText(result.request.rbw_khz) + " kHz";
}

void DrawHead(Canvas& canvas, const Result& result, const std::string& title) {
    canvas.Text({margin, 30}, title, 15, Ink::Text, Align::Left, true);
    canvas.Text({margin, 47}, SettingsText(result), 10, Ink::Faint);
    if (const auto notes = Warnings(result); !notes.empty()) {
        std::string text = notes[0].substr(0, notes[0].find("; levels"));
        if (notes.size() > 1) text += "; " + std::to_string(notes.size() - 1) + " more";
        canvas.Text({pageWidth - 20, 30}, text, 10, Ink::MaxHold, Align::Right, true);
    }
    struct Entry {
        const char* text;
        Colour colour;
        bool shown;
    };
    const Entry entries[] = {{"last sweep", Ink::Spectrum, true},
                             {"max hold", Ink::MaxHold, result.request.maxHold},
                             {"average (mean of power)", Ink::Average, result.request.average},
                             {"channel power (mean of sweeps)", Ink::Power, true},
                             {"limit", Ink::Limit, result.request.limits.has_value()}};
    double x = margin;
    for (const Entry& entry : entries) {
        if (!entry.shown) continue;
        canvas.Line({{x, 62}, {x + 18, 62}}, entry.colour, 2.5);
        canvas.Text({x + 23, 65}, entry.text, 9.5, Ink::Text);
        x += 23 + canvas.TextWidth(entry.text, 9.5) + 22;
    }
}

void DrawGraphs(Canvas& canvas, const Axes& axes, const ChainResult& chain, double first_mhz, double step_mhz) {
    axes.DrawGraph(canvas, chain.spectrum, first_mhz, step_mhz, Ink::Spectrum, 0.8);
    axes.DrawGraph(canvas, chain.maxHold, first_mhz, step_mhz, Ink::MaxHold, 0.9);
    axes.DrawGraph(canvas, chain.average, first_mhz, step_mhz, Ink::Average, 1.1);
}

/// The limit over one channel: its level, or the line's part inside.
void DrawLimit(Canvas& canvas, const Axes& axes, const Result& result, const ChannelResult& channel) {
    if (!result.request.limits) return;
    const Limits& limits = *result.request.limits;
    const double width = WidthMhz(result.request.bandwidth);
    const double low = channel.centre_mhz - width / 2, high = channel.centre_mhz + width / 2;
    std::vector<Point> points;
    const auto add = [&](double mhz, std::optional<double> dbm) {
        if (dbm) points.push_back({axes.X(mhz), axes.Y(*dbm)});
    };
    const auto level = limits.ChannelDbm(result.request.band, channel.channel, width);
    for (const double edge : {low, high})
        add(edge, limits.IsLine() ? limits.LineDbm(edge) : level);
    for (const Limits::Point& point : limits.Line())
        if (point.frequency_mhz > low && point.frequency_mhz < high) add(point.frequency_mhz, point.level_dbm);
    std::ranges::sort(points, {}, &Point::x);
    canvas.Line(points, Ink::Limit, 1.4, true);
}

/// "Chain A:  -61.2 dBm in 20 MHz, FAIL".
std::string ChainLabel(const ChainResult& chain, const Request& request) {
    std::string text =
        "Chain " + chain.chain + ":  " + FixedText(chain.power_dbm, 1) + " dBm in " + request.bandwidth + " MHz";
    if (chain.judgement) text += std::string(", ") + VerdictText(chain.judgement->verdict);
    return text;
}

/// How the picture came about, below everything.
void DrawFoot(Canvas& canvas, const std::vector<std::string>& lines, double top) {
    for (std::size_t k = 0; k < lines.size(); ++k)
        canvas.Text({margin, top + footLine * static_cast<double>(k)}, lines[k], 8, Ink::Faint);
}

void DrawPeaks(Canvas& canvas, const Axes& axes, const std::vector<Peak>& peaks) {
    std::vector<Box> taken;
    for (std::size_t k = 0; k < peaks.size(); ++k) {
        const Point tip{axes.X(peaks[k].frequency_mhz), axes.Y(peaks[k].power_dbm) - 2};
        canvas.Triangle(tip, 7, Ink::Text);
        const std::string text =
            FixedText(peaks[k].frequency_mhz, 2) + " MHz  " + FixedText(peaks[k].power_dbm, 1) + " dBm";
        const double width = canvas.TextWidth(text, 8.5);
        Box label{std::clamp(tip.x - width / 2, axes.Inside().left, axes.Inside().right - width), tip.y - 20, 0, 0};
        label = {label.left, label.top, label.left + width, label.top + 10};
        const auto overlaps = [&](const Box& other) {
            return label.left < other.right + 4 && other.left < label.right + 4 && label.top < other.bottom &&
                   other.top < label.bottom;
        };
        while (std::ranges::any_of(taken, overlaps)) {  // upwards until it is free
            label.top -= 11;
            label.bottom -= 11;
        }
        if (label.top < axes.Inside().top - 2) continue;  // no room left: the table has it
        taken.push_back(label);
        canvas.Text({label.left, label.bottom}, text, 8.5, Ink::Text);
    }
}

void DrawChannelPanel(Canvas& canvas, const Result& result, const ChannelResult& channel, const ChainResult& chain,
                      const Box& box, bool last) {
    const double half = channel.sampleRate_mhz / 2;
    const Axes axes(box, {channel.centre_mhz - half, channel.centre_mhz + half}, LevelRange(result));
    const double width = WidthMhz(result.request.bandwidth);
    const double low = channel.centre_mhz - width / 2, high = channel.centre_mhz + width / 2;
    axes.DrawGrid(canvas, BinTitle(result));
    canvas.Fill({axes.X(low), box.top, axes.X(high), box.bottom}, Ink::Band);
    for (const double edge : {low, high})
        canvas.Line({{axes.X(edge), box.top}, {axes.X(edge), box.bottom}}, Ink::Edge, 0.9, true);
    const std::size_t bins = chain.spectrum.size();
    DrawGraphs(canvas, axes, chain, BinMhz(channel, 0, bins), result.request.rbw_khz / 1000.0);
    canvas.Line({{axes.X(low), axes.Y(chain.power_dbm)}, {axes.X(high), axes.Y(chain.power_dbm)}}, Ink::Power, 1.6);
    DrawLimit(canvas, axes, result, channel);
    DrawPeaks(canvas, axes, chain.peaks);
    axes.DrawFrame(canvas, last ? "MHz" : "");
    canvas.Text({box.right - 8, box.top + 15}, ChainLabel(chain, result.request), 10.5, Ink::Text, Align::Right, true);
}

void DrawScanPanel(Canvas& canvas, const Result& result, std::size_t chainIndex, const Box& box, bool last) {
    const double width = WidthMhz(result.request.bandwidth);
    Range mhz{1e9, -1e9};
    for (const ChannelResult& channel : result.channels)
        mhz = {std::min(mhz.low, channel.centre_mhz - width / 2), std::max(mhz.high, channel.centre_mhz + width / 2)};
    const Axes axes(box, mhz, LevelRange(result));
    axes.DrawGrid(canvas, "dBm");
    double labelEnd = -1e9;
    for (const ChannelResult& channel : result.channels) {
        const ChainResult& chain = channel.chains[chainIndex];
        const auto inBand = [&](const std::vector<double>& graph) {
            const auto bins = static_cast<double>(graph.size());
            const auto half = static_cast<std::ptrdiff_t>(width / channel.sampleRate_mhz * bins / 2);
            const auto middle = static_cast<std::ptrdiff_t>(graph.size() / 2);
            if (graph.empty()) return graph;
            return std::vector<double>(graph.begin() + middle - half,
                                       graph.begin() + std::min(middle + half, 2 * middle));
        };
        ChainResult inside;
        inside.spectrum = inBand(chain.spectrum);
        inside.maxHold = inBand(chain.maxHold);
        inside.average = inBand(chain.average);
        DrawGraphs(canvas, axes, inside, channel.centre_mhz - width / 2, result.request.rbw_khz / 1000.0);
    }
    for (const ChannelResult& channel : result.channels) {  // above all graphs
        const ChainResult& chain = channel.chains[chainIndex];
        const double left = axes.X(channel.centre_mhz - width / 2), right = axes.X(channel.centre_mhz + width / 2);
        const double y = axes.Y(chain.power_dbm);
        canvas.Line({{left, y}, {right, y}}, Ink::Power, 2.2);
        DrawLimit(canvas, axes, result, channel);
        std::string number = std::to_string(channel.channel);
        if (chain.judgement && chain.judgement->verdict != Verdict::Pass)
            number += std::string(" ") + VerdictText(chain.judgement->verdict);
        const double middle = (left + right) / 2, size = canvas.TextWidth(number, 8.5);
        if (middle - size / 2 < labelEnd + 3) continue;
        canvas.Text({middle, y - 4}, number, 8.5, Ink::Text, Align::Centre);
        labelEnd = middle + size / 2;
    }
    axes.DrawFrame(canvas, last ? "MHz" : "");
    canvas.Text({box.right - 8, box.top + 15},
                "Chain " + result.channels[0].chains[chainIndex].chain + ":  graphs in " + BinTitle(result) +
                    ", bars in dBm / " + result.request.bandwidth + " MHz, channel number above",
                9.5, Ink::Text, Align::Right);
}

}  // namespace

bool IsPicturePath(const std::string& path) {
    return path.ends_with(".png") || path.ends_with(".svg") || path.ends_with(".pdf");
}

OSAL::Outcome<> WritePicture(const Result& result, const std::string& path) {
    if (!IsPicturePath(path)) return OSAL::Refusal{"'" + path + "': a picture's ending is .png, .svg or .pdf"};
    Result shown = result;
    std::erase_if(shown.channels, [](const ChannelResult& channel) { return !IsMeasured(channel); });
    if (shown.channels.empty()) return OSAL::Refusal{"nothing was measured, so there is nothing to draw"};

    const std::size_t panels = shown.channels[0].chains.size();
    const std::vector<std::string> foot = ProvenanceLines(result);
    const double bottom = headHeight + static_cast<double>(panels) * panelHeight + 14;
    const double height = bottom + footLine * static_cast<double>(foot.size()) + 12;
    Canvas canvas(path, pageWidth, height);
    const bool isScan = shown.channels.size() > 1;
    const ChannelResult& channel = shown.channels[0];
    DrawHead(canvas, result, isScan ? "Channel scan" : "Spectrum around " + ShortText(channel.centre_mhz) + " MHz");
    for (std::size_t c = 0; c < panels; ++c) {
        const double top = headHeight + static_cast<double>(c) * panelHeight;
        const Box box{margin, top, pageWidth - 20, top + panelHeight - 30};
        if (isScan)
            DrawScanPanel(canvas, shown, c, box, c + 1 == panels);
        else
            DrawChannelPanel(canvas, shown, channel, channel.chains[c], box, c + 1 == panels);
    }
    DrawFoot(canvas, foot, bottom);
    return canvas.Finish();
}

}  // namespace TarnMeasure
