#include "Stores/GainFile.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>

#include "Caught.h"
#include "Exceptions.h"
#include "OSAL/OSAL.h"
#include "Streams/Trace.h"
#include "Support/FlowText.h"

namespace {

/// The flow object opens this operation's scope; the lines below bear its name.
constexpr const char* traceFunctionName = "TarnWifiFlows::SetGainFilename";

constexpr std::size_t ColumnCount = 5;

/// One text for the four key fields. No field of the file holds a comma.
std::string KeyText(const GainListNode& node) {
    const double channel = node.channel + 0.0;  // -0 and 0 are one frequency
    return node.deviceMac + ',' + node.chain + ',' + node.bandwidth + ',' +
           std::to_string(std::bit_cast<std::uint64_t>(channel));
}

/// The columns of the next line, empty fields left out; nothing at the end of the file. A line end of two characters
/// counts as one.
std::optional<std::vector<std::string>> NextLine(std::istream& file) {
    std::string line;
    if (!std::getline(file, line)) return std::nullopt;
    if (line.ends_with('\r')) line.pop_back();
    return FlowText::SplitString(line, ",");
}

std::string Failed(const Common::Format& message) {
    TRACE(Streams::TraceError, message);
    return message;
}

std::string WrongColumns() {
    return Failed(Common::Format("The gain CSV file has a wrong Format. It must have ${1} columns") % ColumnCount);
}

void AddRow(std::vector<std::string> columns, GainList& list) {
    GainListNode node;
    node.channel = FlowText::AtofText(columns[2]);
    node.gain = FlowText::AtofText(columns[3]);
    node.deviceMac = std::move(columns[0]);
    node.chain = std::move(columns[1]);
    node.bandwidth = std::move(columns[4]);
    TRACE(Streams::TraceInfo, Common::Format("freqNum = ${1}, gain = ${2}") % node.channel % node.gain);
    if (list.Add(std::move(node)))
        TRACE(Streams::TraceInfo, "Adding a new gain value to the gain Linked List");
    else
        TRACE(Streams::TraceInfo, "Gain value already exist in the gain Linked List");
}

/// Throws Common::Exception when the path can't be read or is a link.
std::ifstream Open(const std::string& path) {
    const bool isLink = OSAL::IsLink(path);
    TRACE(Streams::TraceInfo, Common::Format("Opening gain file: ${1}") % path);
    std::ifstream file;
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error))  // opening a pipe would wait for a writer
        file.open(path, std::ios::in | std::ios::binary);
    if (!file.is_open()) throw Common::Exception(Common::Format("Failed opening ${1} file") % path);
    if (isLink) {
        const std::string message = Common::Format("File ${1} is a link") % path;
        TRACE(Streams::TraceError, message);
        throw Common::Exception(message);
    }
    return file;
}

std::optional<std::string> ReadRows(std::istream& file, GainList& list) {
    const auto header = NextLine(file);
    if (!header || header->size() != ColumnCount) return WrongColumns();
    std::optional<std::string> trouble;
    const auto read = [&] {
        while (auto columns = NextLine(file)) {
            if (columns->size() == ColumnCount)
                AddRow(std::move(*columns), list);
            else
                return void(trouble = WrongColumns());
        }
    };
    Common::RunCaught(read, [&](const Common::Caught&) {
        trouble = Failed(Common::Format("Frequency number or gain value have a wrong Common::Format"));
    });
    return trouble;
}

}  // namespace

bool GainList::Add(GainListNode node) {
    // A frequency that is no number equals no other one.
    if (!std::isnan(node.channel) && !m_positions.try_emplace(KeyText(node), m_nodes.size()).second) return false;
    m_nodes.push_back(std::move(node));
    return true;
}

const GainListNode* GainList::Find(const GainListNode& key) const {
    const auto found = m_positions.find(KeyText(key));
    return found == m_positions.end() ? nullptr : &m_nodes[found->second];
}

void GainList::Clear() {
    m_nodes.clear();
    m_positions.clear();
}

std::optional<std::string> ReadGainFile(const std::string& path, GainList& list) {
    try {
        std::ifstream file = Open(path);
        return ReadRows(file, list);
    } catch (const Common::Exception& error) {
        return Failed(Common::Format("${1}") % error.what());
    }
}
