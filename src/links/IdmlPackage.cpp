#include "links/IdmlPackage.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cstring>

namespace quillon::links {

QStringList packagePartFiles(const QString& packageFolder, const QString& partFolder)
{
    const QDir folder(packageFolder + u'/' + partFolder);
    const QStringList names = folder.entryList(QDir::Files | QDir::Readable, QDir::Unsorted);
    std::vector<std::pair<QByteArray, QString>> sorted;
    sorted.reserve(static_cast<size_t>(names.size()));
    for (const QString& name : names)
        sorted.emplace_back(name.toUtf8(), name);
    std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    QStringList paths;
    paths.reserve(names.size());
    for (const auto& entry : sorted)
        paths << folder.filePath(entry.second);
    return paths;
}

namespace {

// "<Link" followed by a blank, "/" or ">": the start of a Link element, not of "LinkedStory...".
int countLinkTags(const QByteArray& text)
{
    static constexpr char kTag[] = "<Link";
    constexpr qsizetype tagLength = sizeof(kTag) - 1;
    int count = 0;
    for (qsizetype at = text.indexOf(kTag); at >= 0; at = text.indexOf(kTag, at + tagLength)) {
        const qsizetype next = at + tagLength;
        if (next < text.size() && std::strchr(" \t\r\n/>", text[next]) && text[next] != '\0')
            ++count;
    }
    return count;
}

} // namespace

int countLinksInIDMLFolder(const QString& packageFolder)
{
    int count = 0;
    for (const char* part : {"MasterSpreads", "Spreads", "Stories"}) {
        for (const QString& path : packagePartFiles(packageFolder, QLatin1String(part))) {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly))
                count += countLinkTags(file.readAll());
        }
    }
    return count;
}

} // namespace quillon::links
