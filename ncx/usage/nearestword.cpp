#include "ncx/usage/nearestword.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// Number of edits from one word to another, two swapped letters being one.
qsizetype distance(const QString &from, const QString &to)
{
    std::vector<std::vector<qsizetype>> edits(static_cast<size_t>(from.size()) + 1,
                                              std::vector<qsizetype>(static_cast<size_t>(to.size()) + 1));
    for (size_t i = 0; i < edits.size(); ++i) {
        for (size_t k = 0; k < edits[i].size(); ++k) {
            if (i == 0 || k == 0) {
                edits[i][k] = static_cast<qsizetype>(std::max<size_t>(i, k)); // one of them is 0
                continue;
            }
            const auto letter = [](const QString &word, size_t place) {
                return word.at(static_cast<qsizetype>(place) - 1).toLower();
            };
            const bool same = letter(from, i) == letter(to, k);
            edits[i][k] = std::min({edits[i - 1][k] + 1, edits[i][k - 1] + 1, edits[i - 1][k - 1] + (same ? 0 : 1)});
            if (i > 1 && k > 1 && letter(from, i) == letter(to, k - 1) && letter(from, i - 1) == letter(to, k))
                edits[i][k] = std::min(edits[i][k], edits[i - 2][k - 2] + 1);
        }
    }
    return edits.back().back();
}

} // namespace

QString nearestWord(const QString &word, const QStringList &known)
{
    constexpr qsizetype longest = 64;
    if (word.isEmpty() || word.size() > longest)
        return {};
    QString best;
    qsizetype fewest = std::max<qsizetype>(1, word.size() / 3) + 1;
    for (const QString &candidate : known) {
        const bool begins = word.size() > 1 && candidate.startsWith(word, Qt::CaseInsensitive);
        const qsizetype edits = begins ? 1 : distance(word, candidate);
        if (edits < fewest) {
            fewest = edits;
            best = candidate;
        }
    }
    return best;
}

QString didYouMean(const QString &word, const QStringList &known, const QString &prefix)
{
    const QString nearest = nearestWord(word, known);
    return nearest.isEmpty() ? QString() : u"; did you mean '%1%2'?"_s.arg(prefix, nearest);
}
