#include "Console/ResultTable.h"

#include <algorithm>
#include <array>
#include <optional>

#include "Console/TextWidth.h"
#include "PlainText.h"

namespace TarnHost {
namespace {

using TarnMeasure::Printable;

constexpr std::size_t columnCount = 6;
constexpr std::size_t gap = 2;
constexpr std::size_t shortestName = 12;

/// Fields from the right, where none can hold a comma: "file,power,band,channel,width,chain,".
std::optional<ResultRow> ParseRow(std::string_view line) {
    if (!line.ends_with(',')) return std::nullopt;
    line.remove_suffix(1);
    std::array<std::string, columnCount - 1> fields;
    for (std::size_t k = fields.size(); k-- > 0;) {
        const auto comma = line.rfind(',');
        if (comma == std::string_view::npos) return std::nullopt;
        fields[k] = line.substr(comma + 1);
        line = line.substr(0, comma);
    }
    return ResultRow{std::string(line), fields[0], fields[1], fields[2], fields[3], fields[4]};
}

/// Characters before the decimal point, so that points can stand in one column.
std::size_t PointPosition(const std::string& number) {
    return std::min(number.find('.'), number.size());
}

void AlignAtPoint(std::vector<ResultRow>& rows) {
    std::size_t before = 0;
    std::size_t behind = 0;
    for (const ResultRow& row : rows) {
        before = std::max(before, PointPosition(row.power));
        behind = std::max(behind, row.power.size() - PointPosition(row.power));
    }
    for (ResultRow& row : rows) {
        const std::size_t point = PointPosition(row.power);
        row.power =
            std::string(before - point, ' ') + row.power + std::string(behind - (row.power.size() - point), ' ');
    }
}

std::string Padding(const std::string& text, std::size_t width) {
    const std::size_t own = DisplayWidth(text);
    return std::string(width > own ? width - own : 0, ' ');
}

using Cells = std::array<std::string, columnCount>;

std::string LayOutLine(const Cells& cells, const std::array<std::size_t, columnCount>& widths) {
    std::string line = cells[0] + Padding(cells[0], widths[0]);
    for (std::size_t k = 1; k < columnCount; ++k)
        line += std::string(gap, ' ') + Padding(cells[k], widths[k]) + cells[k];
    return line + '\n';
}

}  // namespace

std::vector<ResultRow> ParseResults(std::string_view text) {
    std::vector<ResultRow> rows;
    std::string pending;
    while (!text.empty()) {
        const auto end = text.find('\n');
        if (end == std::string_view::npos) break;  // a line still being written
        pending += text.substr(0, end);
        text.remove_prefix(end + 1);
        if (pending == resultHeader) {
            pending.clear();
        } else if (auto row = ParseRow(pending)) {
            rows.push_back(std::move(*row));
            pending.clear();
        } else {
            pending += '\n';  // of the file's name
        }
    }
    return rows;
}

std::string LayOutTable(std::vector<ResultRow> rows, std::size_t columns) {
    std::ranges::sort(rows, ComesBefore, &ResultRow::file);
    AlignAtPoint(rows);
    std::vector<Cells> lines = {{"FILE", "POWER dBm", "BAND GHz", "CHANNEL", "WIDTH MHz", "CHAIN"}};
    for (ResultRow& row : rows)
        lines.push_back({Printable(row.file), row.power, row.band, row.channel, row.width, row.chain});

    std::array<std::size_t, columnCount> widths{};
    for (const Cells& cells : lines) {
        for (std::size_t k = 0; k < columnCount; ++k)
            widths[k] = std::max(widths[k], DisplayWidth(cells[k]));
    }
    std::size_t others = 0;
    for (std::size_t k = 1; k < columnCount; ++k)
        others += gap + widths[k];
    if (columns > 0 && others + widths[0] > columns) {
        widths[0] = std::max(shortestName, columns > others ? columns - others : 0);
        for (Cells& cells : lines)
            cells[0] = ShortenName(cells[0], widths[0]);
    }
    std::string table;
    for (const Cells& cells : lines)
        table += LayOutLine(cells, widths);
    return table;
}

std::string ShortenName(const std::string& name, std::size_t length) {
    const std::size_t width = DisplayWidth(name);
    if (width <= length || length == 0) return name;
    const std::size_t tail = length / 2;
    const std::size_t head = length - 1 - tail;
    return LeadingCharacters(name, head) + "…" + name.substr(LeadingCharacters(name, width - tail).size());
}

std::string ResultText(const std::vector<ResultRow>& rows) {
    const auto field = [](const std::string& text) {
        const std::string plain = Printable(text);
        if (plain.find_first_of(",\"") == std::string::npos) return plain;
        std::string quoted = "\"";
        for (const char c : plain)
            quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
        return quoted + "\"";
    };
    std::string text = std::string(resultHeader) + "\n";
    for (const ResultRow& row : rows) {
        for (const std::string* value : {&row.file, &row.power, &row.band, &row.channel, &row.width, &row.chain})
            text += field(*value) + ",";
        text += "\n";
    }
    return text;
}

}  // namespace TarnHost
