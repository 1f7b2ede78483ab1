#include "results/TextMatching.h"

#include <QList>

namespace quillon::results {

namespace {

QString foldCaseAndDiacritics(const QString& text)
{
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString bare;
    bare.reserve(decomposed.size());
    for (QChar c : decomposed)
        if (c.category() != QChar::Mark_NonSpacing)
            bare.append(c);
    return bare.toCaseFolded().normalized(QString::NormalizationForm_C);
}

} // namespace

bool containsIgnoringCaseAndDiacritics(const QString& text, const QString& part)
{
    return foldCaseAndDiacritics(text).contains(foldCaseAndDiacritics(part));
}

bool matchesPatternIgnoringCase(const QString& text, const QString& pattern)
{
    // Code points, so "?" takes a character outside the basic plane as one.
    const QList<uint> s = text.toCaseFolded().toUcs4();
    const QList<uint> p = pattern.toCaseFolded().toUcs4();
    qsizetype si = 0;
    qsizetype pi = 0;
    qsizetype starP = -1; // pattern position after the last "*"
    qsizetype starS = 0;  // text position that "*" is currently taken to reach
    while (si < s.size()) {
        if (pi < p.size() && (p[pi] == u'?' || (p[pi] != u'*' && p[pi] == s[si]))) {
            ++si;
            ++pi;
        } else if (pi < p.size() && p[pi] == u'*') {
            starP = ++pi;
            starS = si;
        } else if (starP >= 0) {
            pi = starP;
            si = ++starS;
        } else {
            return false;
        }
    }
    while (pi < p.size() && p[pi] == u'*')
        ++pi;
    return pi == p.size();
}

} // namespace quillon::results
