#include "idml/PackageParts.h"

#include <QDir>

#include <algorithm>

namespace quillon::idml {

QStringList packagePartFiles(const QString& packageFolder, const QString& partFolder)
{
    const QDir folder(packageFolder + u'/' + partFolder);
    const QStringList names = folder.entryList(QDir::Files, QDir::Unsorted);
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

} // namespace quillon::idml
