// The gain CSV file: columns device MAC, chain, frequency in MHz, gain in dB, bandwidth such as "20MHz".
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

/// One row of the file.
struct GainListNode {
    std::string deviceMac;
    std::string chain;      ///< "A" or "B"
    double channel = 0.0;   ///< the channel's centre frequency in MHz, not its number
    std::string bandwidth;  ///< number and "MHz"
    double gain = 0.0;
};

/// Rows in the order of the file; the first row of a key wins. Owns its nodes.
class GainList {
public:
    /// False, and nothing changed, when a node with the same four key fields is there already.
    bool Add(GainListNode node);
    /// The node with the four key fields of `key` (its gain isn't looked at); null when there is none. Dead after the
    /// next change of the list.
    const GainListNode* Find(const GainListNode& key) const;
    void Clear();
    bool IsEmpty() const { return m_nodes.empty(); }
    const std::vector<GainListNode>& Nodes() const { return m_nodes; }

private:
    std::vector<GainListNode> m_nodes;
    std::unordered_map<std::string, std::size_t> m_positions;  ///< key text to position in `m_nodes`
};

/// Appends the rows of a file to `list` and logs what it meets, as the operation SetGainFilename.
/// @return nothing when the file was read to its end, else the message for the user; rows read before it stay. A path
///         that is no regular file can't be opened.
std::optional<std::string> ReadGainFile(const std::string& path, GainList& list);
