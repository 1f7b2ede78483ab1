#include "package/PackageNames.h"

#include "app/FilePaths.h"

#include <QFileInfo>

namespace quillon::package {

namespace {

// Room for "_" and a counter when a taken name is numbered.
constexpr qsizetype kNumberBytes = 11;
constexpr qsizetype kMaxReportNameCharacters = 255;

bool exists(const QString& basePath, const QString& name)
{
    return QFileInfo::exists(basePath + u'/' + name);
}

// A free name for `name` in the base folder (or `name` itself when overwriting), fitting a file
// name; the existence test sees `name` as given.
QString freeName(const PackageFolderNaming& naming, const QString& name)
{
    const QString fitting = cutToFileNameBytes(name);
    if (naming.overwrite || !exists(naming.basePath, fitting))
        return fitting;
    // Taken apart by length, not at the last "/": the name may still hold one.
    const QString folder = naming.basePath.endsWith(u'/') ? naming.basePath.chopped(1) : naming.basePath;
    return app::finalPathByAppendingNumberToFileName(cutToFileNameBytes(name, kMaxFileNameBytes - kNumberBytes), folder)
        .mid(folder.size() + 1);
}

} // namespace

QString cutToFileNameBytes(const QString& name, qsizetype maxBytes)
{
    if (name.toUtf8().size() <= maxBytes)
        return name;
    qsizetype bytes = 0;
    qsizetype end = 0;
    while (end < name.size()) {
        const qsizetype step = name.at(end).isHighSurrogate() && end + 1 < name.size() ? 2 : 1;
        const qsizetype width = QStringView(name).sliced(end, step).toUtf8().size();
        if (bytes + width > maxBytes)
            break;
        bytes += width;
        end += step;
    }
    return name.left(end);
}

QString packageFolderNameForUnified(const PackageFolderNaming& naming, const QString& firstDocumentPath)
{
    QString name = naming.namePart1 + naming.namePart2;
    if (name.isEmpty())
        name = QFileInfo(firstDocumentPath).completeBaseName();
    return app::safeFileName(freeName(naming, name));
}

QString separatePackageFolderPath(const PackageFolderNaming& naming, const QString& documentPath)
{
    const QString name = app::safeFileName(QFileInfo(documentPath).completeBaseName() + naming.namePart2);
    return naming.basePath + u'/' + freeName(naming, name);
}

QString reportNameForDocName(const QString& docName, const QString& part)
{
    const QString base = QFileInfo(docName).completeBaseName();
    if (base.size() + part.size() <= kMaxReportNameCharacters && (base + part).toUtf8().size() <= kMaxFileNameBytes)
        return base + part;
    const QString ellipsisAndPart = QStringLiteral("...") + part;
    const QString start = docName.left(std::max<qsizetype>(0, kMaxReportNameCharacters - ellipsisAndPart.size()));
    return cutToFileNameBytes(start, kMaxFileNameBytes - ellipsisAndPart.toUtf8().size()) + ellipsisAndPart;
}

} // namespace quillon::package
