#include "tool/suggestion.h"

#include <strings.h>

#include <algorithm>
#include <cctype>

namespace tool {
namespace {

constexpr std::size_t kShortestBeginning = 3;

bool SameLetter(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// The least number of mistakes that make one word of the other.
std::size_t Mistakes(const std::string& a, const std::string& b) {
  // rows[i][j]: from the first i letters of a to the first j of b.
  std::vector<std::vector<std::size_t>> rows(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        rows[i][j] = i + j;
        continue;
      }
      const std::size_t replaced = SameLetter(a[i - 1], b[j - 1]) ? 0 : 1;
      rows[i][j] =
          std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + replaced});
      if (i > 1 && j > 1 && SameLetter(a[i - 1], b[j - 2]) && SameLetter(a[i - 2], b[j - 1])) {
        rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
      }
    }
  }
  return rows[a.size()][b.size()];
}

bool Begins(const std::string& word, const std::string& candidate) {
  return word.size() >= kShortestBeginning &&
         strncasecmp(word.c_str(), candidate.c_str(), word.size()) == 0;
}

}  // namespace

std::string Nearest(const std::string& word, const std::vector<std::string>& candidates) {
  const std::string* nearest = nullptr;
  const std::string* begun = nullptr;
  std::size_t fewest = 0;
  for (const std::string& candidate : candidates) {
    if (Begins(word, candidate) && (begun == nullptr || candidate.size() < begun->size())) {
      begun = &candidate;
    }
    const auto [shorter, longer] = std::minmax({word.size(), candidate.size()});
    if (longer - shorter > longer / 3) continue;  // and long words cost nothing
    const std::size_t mistakes = Mistakes(word, candidate);
    if (mistakes <= longer / 3 && (nearest == nullptr || mistakes < fewest)) {
      nearest = &candidate;
      fewest = mistakes;
    }
  }
  if (nearest == nullptr) nearest = begun;
  return nearest == nullptr ? "" : *nearest;
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& candidates) {
  const std::string nearest = Nearest(word, candidates);
  return nearest.empty() ? "" : "; did you mean '" + nearest + "'?";
}

}  // namespace tool
