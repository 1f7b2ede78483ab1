#include "app/Strings.h"

#include <QFileInfo>

#include <algorithm>

namespace quillon::app {

QString versionNumberByRemovingTrailingZeros(QString version)
{
    while (version.endsWith(QLatin1String(".0")))
        version.chop(2);
    return version;
}

int checkVersion(const QString& version, const QString& other)
{
    const int order =
        numericCompare(versionNumberByRemovingTrailingZeros(version), versionNumberByRemovingTrailingZeros(other));
    if (order == 0)
        return 0;
    return order > 0 ? 1 : 2;
}

namespace {

// Compares two digit runs as numbers of any length: strip leading zeros, then the longer run
// is larger, then the first differing digit decides.
int compareDigitRuns(QStringView a, QStringView b)
{
    auto stripZeros = [](QStringView s) {
        qsizetype i = 0;
        while (i + 1 < s.size() && s[i] == u'0')
            ++i;
        return s.mid(i);
    };
    a = stripZeros(a);
    b = stripZeros(b);
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    const int c = a.compare(b);
    return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

} // namespace

int numericCompare(const QString& a, const QString& b)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            qsizetype ei = i;
            qsizetype ej = j;
            while (ei < a.size() && a[ei].isDigit())
                ++ei;
            while (ej < b.size() && b[ej].isDigit())
                ++ej;
            if (const int c = compareDigitRuns(QStringView(a).mid(i, ei - i), QStringView(b).mid(j, ej - j)))
                return c;
            i = ei;
            j = ej;
            continue;
        }
        const QChar ca = a[i].toCaseFolded();
        const QChar cb = b[j].toCaseFolded();
        if (ca != cb)
            return ca < cb ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < a.size())
        return 1;
    if (j < b.size())
        return -1;
    return 0;
}

FoundRange rangeOfFirstFoundStringFromArray(const QString& text, const QStringList& candidates, Qt::CaseSensitivity cs)
{
    for (const QString& candidate : candidates) {
        if (candidate.isEmpty())
            continue;
        const qsizetype at = text.indexOf(candidate, 0, cs);
        if (at >= 0)
            return {at, candidate.size()};
    }
    return {};
}

QString stringByReplacingPathExtensionWith(const QString& path, const QString& extension)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    const qsizetype dot = path.lastIndexOf(u'.');
    // A dot that starts the last component ("/a/.hidden") is a name, not an extension.
    const bool hasExtension = dot > slash + 1 && dot < path.size() - 1;
    const QString stem = hasExtension ? path.left(dot) : path;
    return extension.isEmpty() ? stem : stem + u'.' + extension;
}

QString stringByEscapingCharacters(const QString& text, const QStringList& characters)
{
    QString out;
    out.reserve(text.size() + 8);
    for (const QChar c : text) {
        if (characters.contains(QString(c)))
            out += u'\\';
        out += c;
    }
    return out;
}

} // namespace quillon::app
