#include "platform/JetLike.h"

#include <vector>

namespace {

QChar fold(QChar c) { return c.toCaseFolded(); }

// Parses the list starting after '[' at pattern[pos]; on success sets `end` to
// the index after ']' and returns whether `c` is in the list.
bool matchList(const QString &p, qsizetype pos, QChar c, qsizetype &end, bool &ok)
{
    ok = false;
    bool negate = false;
    qsizetype i = pos;
    if (i < p.size() && p[i] == QLatin1Char('!')) {
        negate = true;
        ++i;
    }
    bool found = false;
    const QChar fc = fold(c);
    bool first = true;
    while (i < p.size() && (p[i] != QLatin1Char(']') || first)) {
        if (p[i] == QLatin1Char(']') && first) {
            // "[]" is an empty list: matches nothing.
            break;
        }
        first = false;
        QChar lo = p[i];
        if (i + 2 < p.size() && p[i + 1] == QLatin1Char('-') && p[i + 2] != QLatin1Char(']')) {
            QChar hi = p[i + 2];
            if (fold(lo) <= fc && fc <= fold(hi))
                found = true;
            i += 3;
        } else {
            if (fold(lo) == fc)
                found = true;
            ++i;
        }
    }
    if (i >= p.size())
        return false;  // no closing bracket: the pattern is malformed
    end = i + 1;
    ok = true;
    return negate ? !found : found;
}

}  // namespace

bool jetLike(const QString &text, const QString &pattern)
{
    // Iterative matcher with one backtrack point per star, as in glob matching.
    qsizetype t = 0, p = 0;
    qsizetype starP = -1, starT = -1;
    while (t < text.size()) {
        bool advanced = false;
        if (p < pattern.size()) {
            const QChar pc = pattern[p];
            if (pc == QLatin1Char('*')) {
                starP = ++p;
                starT = t;
                continue;
            }
            if (pc == QLatin1Char('?')) {
                ++p;
                ++t;
                advanced = true;
            } else if (pc == QLatin1Char('#')) {
                if (text[t].isDigit()) {
                    ++p;
                    ++t;
                    advanced = true;
                }
            } else if (pc == QLatin1Char('[')) {
                qsizetype end = 0;
                bool ok = false;
                if (matchList(pattern, p + 1, text[t], end, ok) && ok) {
                    p = end;
                    ++t;
                    advanced = true;
                } else if (!ok && fold(text[t]) == QLatin1Char('[')) {
                    ++p;
                    ++t;
                    advanced = true;
                }
            } else if (fold(pc) == fold(text[t])) {
                ++p;
                ++t;
                advanced = true;
            }
        }
        if (advanced)
            continue;
        if (starP < 0)
            return false;
        p = starP;
        t = ++starT;
    }
    while (p < pattern.size() && pattern[p] == QLatin1Char('*'))
        ++p;
    return p == pattern.size();
}
