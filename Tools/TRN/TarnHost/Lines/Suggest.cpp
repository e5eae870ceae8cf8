#include "Lines/Suggest.h"

#include <algorithm>
#include <cctype>

namespace TarnHost {
namespace {

constexpr std::size_t longestWord = 64;

std::size_t Distance(std::string_view a, std::string_view b) {
    const auto isSame = [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    };
    std::vector<std::vector<std::size_t>> costs(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        for (std::size_t j = 0; j <= b.size(); ++j) {
            std::size_t& cost = costs[i][j];
            cost = i == 0 ? j : j == 0 ? i : costs[i - 1][j - 1] + (isSame(a[i - 1], b[j - 1]) ? 0 : 1);
            if (i == 0 || j == 0) continue;
            cost = std::min({cost, costs[i - 1][j] + 1, costs[i][j - 1] + 1});
            if (i > 1 && j > 1 && isSame(a[i - 1], b[j - 2]) && isSame(a[i - 2], b[j - 1]))
                cost = std::min(cost, costs[i - 2][j - 2] + 1);
        }
    return costs[a.size()][b.size()];
}

}  // namespace

std::string DidYouMean(std::string_view word, const std::vector<std::string>& candidates) {
    if (word.empty() || word.size() > longestWord) return {};
    const std::string* nearest = nullptr;
    std::size_t fewest = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = Distance(word, candidate);
        if (distance >= fewest) continue;
        fewest = distance;
        nearest = &candidate;
    }
    return nearest ? "; did you mean '" + *nearest + "'?" : std::string();
}

}  // namespace TarnHost
