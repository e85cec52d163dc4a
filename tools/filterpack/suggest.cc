#include "suggest.h"

#include <algorithm>
#include <cctype>

namespace filterpack {
namespace {

// Levenshtein distance, case-insensitive: "Param" is a misspelling too.
size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            const bool same = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                              std::tolower(static_cast<unsigned char>(b[j - 1]));
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (same ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

}  // namespace

std::string closestName(const std::string& word, const std::vector<std::string>& candidates) {
    std::string best;
    size_t bestDistance = std::max<size_t>(2, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const size_t distance = editDistance(word, candidate);
        if (distance < bestDistance) {
            best = candidate;
            bestDistance = distance;
        }
    }
    return best;
}

std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates, const char* before,
                       const char* after) {
    const std::string best = closestName(word, candidates);
    return best.empty() ? std::string() : "; did you mean " + std::string(before) + best + after + "?";
}

}  // namespace filterpack
