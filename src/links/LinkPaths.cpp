#include "links/LinkPaths.h"

#include "app/RegularFile.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

namespace quillon::links {

namespace {

bool isDriveLetterPath(QStringView path)
{
    return path.size() >= 2 && path[0].isLetter() && path[0].unicode() < 128 && path[1] == u':' &&
           (path.size() == 2 || path[2] == u'/' || path[2] == u'\\');
}

} // namespace

bool isFileUri(const QString& uri)
{
    return uri.startsWith(QLatin1String("file:"));
}

QString pathFromFileUri(const QString& uri, const QString& documentFolder)
{
    if (!isFileUri(uri))
        return {};
    QString rest = uri.mid(5);
    // A query or fragment is not part of the path; a file name holding '?' or '#' has it escaped.
    for (const QChar stop : {u'?', u'#'})
        if (const qsizetype cut = rest.indexOf(stop); cut >= 0)
            rest.truncate(cut);
    QString authority;
    if (rest.startsWith(QLatin1String("//"))) {
        const qsizetype slash = rest.indexOf(u'/', 2);
        authority = rest.mid(2, slash < 0 ? -1 : slash - 2);
        rest = slash < 0 ? QString() : rest.mid(slash);
    }
    QString path = QString::fromUtf8(QByteArray::fromPercentEncoding(rest.toUtf8()));
    if (path.isEmpty())
        return {};
    if (!authority.isEmpty() && authority != QLatin1String("localhost"))
        return QStringLiteral("//") + authority + path;
    if (path.startsWith(u'/') && isDriveLetterPath(QStringView(path).mid(1)))
        return path.mid(1);
    if (path.startsWith(u'/') || isDriveLetterPath(path))
        return path;
    return QDir::cleanPath(documentFolder + u'/' + path);
}

QString fileUriFromPath(const QString& path)
{
    const qsizetype drive = isDriveLetterPath(path) ? 2 : 0;
    return QStringLiteral("file:") + path.left(drive) +
           QString::fromLatin1(app::localBytesOfPath(path.mid(drive)).toPercentEncoding(QByteArrayLiteral("/")));
}

QStringList pathComponents(const QString& path)
{
    QStringList components;
    if (path.startsWith(u'/'))
        components << QStringLiteral("/");
    for (const QString& part : path.split(u'/', Qt::SkipEmptyParts))
        components << part;
    return components;
}

QString relocatedLinkPath(const QString& fileName, const QStringList& searchFolders)
{
    if (fileName.isEmpty() || fileName == QLatin1String(".") || fileName == QLatin1String(".."))
        return {};
    for (const QString& folder : searchFolders) {
        const QString candidate = QDir::cleanPath(folder + u'/' + fileName);
        // One stat, following a symbolic link as the file's readers do.
        struct stat buffer {};
        if (::stat(app::localBytesOfPath(candidate).constData(), &buffer) == 0 && S_ISREG(buffer.st_mode))
            return candidate;
    }
    return {};
}

QStringList linkSearchFolders(const QString& documentPath, const QStringList& extraFolders)
{
    const QString documentFolder = QFileInfo(documentPath).absolutePath();
    QStringList folders{documentFolder, documentFolder + QStringLiteral("/Links")};
    for (const QString& folder : extraFolders)
        folders << QFileInfo(folder).absoluteFilePath();
    return folders;
}

} // namespace quillon::links
