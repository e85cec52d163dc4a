// "did you mean" for misspelt names.
#ifndef FILTERPACK_SUGGEST_H
#define FILTERPACK_SUGGEST_H

#include <string>
#include <vector>

namespace filterpack {

// The candidate closest to `word` by edit distance, or "" when none is
// close enough to be a likely misspelling.
std::string closestName(const std::string& word, const std::vector<std::string>& candidates);

// "; did you mean X?" built from closestName (with `wrap` around X, e.g. "<>"
// for elements), or "" when nothing is close.
std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates, const char* before = "",
                       const char* after = "");

}  // namespace filterpack

#endif  // FILTERPACK_SUGGEST_H
