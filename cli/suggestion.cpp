#include <cli/suggestion.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace trv::cli {
namespace {

// Every short word is similar to many others. Comparing takes time for the product of the lengths.
constexpr int minLength = 3;
constexpr int maxLength = 64;

// The number of insertions, deletions, replacements and swaps of neighbours that make one text of
// the other. Row by row, as three rows of the table of all beginnings.
int distanceBetween(const QString& one, const QString& other) {
    const auto columns = static_cast<std::size_t>(other.size()) + 1;
    std::vector<int> beforeLast(columns);
    std::vector<int> last(columns);
    std::vector<int> row(columns);
    for (std::size_t column = 0; column < columns; ++column)
        row[column] = static_cast<int>(column);
    for (int i = 1; i <= one.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (int j = 1; j <= other.size(); ++j) {
            const auto column = static_cast<std::size_t>(j);
            const bool isSame = one.at(i - 1) == other.at(j - 1);
            row[column] = std::min(
                {last[column] + 1, row[column - 1] + 1, last[column - 1] + (isSame ? 0 : 1)});
            const bool isSwap = i > 1 && j > 1 && one.at(i - 1) == other.at(j - 2) &&
                                one.at(i - 2) == other.at(j - 1);
            if (isSwap) row[column] = std::min(row[column], beforeLast[column - 2] + 1);
        }
    }
    return row[columns - 1];
}

}  // namespace

QString nearestName(const QString& word, const QStringList& candidates) {
    if (word.size() < minLength || word.size() > maxLength) return {};
    QString nearest;
    int minDistance = (word.size() + 2) / 3 + 1;
    for (const QString& candidate : candidates) {
        if (candidate.size() > maxLength) continue;
        const int distance = distanceBetween(word.toLower(), candidate.toLower());
        if (distance >= minDistance) continue;
        minDistance = distance;
        nearest = candidate;
    }
    return nearest;
}

QString suggestionFor(const QString& word, const QStringList& candidates) {
    const QString nearest = nearestName(word, candidates);
    return nearest.isEmpty() ? QString() : QStringLiteral("; did you mean '%1'?").arg(nearest);
}

}  // namespace trv::cli
