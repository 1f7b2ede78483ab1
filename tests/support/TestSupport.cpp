#include "support/TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTimeZone>

namespace quillon::test {

QString repoPath(const QString& relative)
{
    return QDir::cleanPath(QStringLiteral(QUILLON_SOURCE_DIR) + u'/' + relative);
}

QString samplePath(const QString& relative)
{
    return repoPath(QStringLiteral("../shared/samples/") + relative);
}

QByteArray readAll(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

void writeAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

QString copyBundledSample(const QString& folder)
{
    const QDir sample(repoPath(QStringLiteral("resources/sample")));
    const QDir target(folder);
    const QString document = target.filePath(QStringLiteral("sample-brochure.idml"));
    target.mkpath(QStringLiteral("Links"));
    QFile::copy(sample.filePath(QStringLiteral("sample-brochure.idml")), document);
    const QDateTime placed(QDate(2026, 1, 15), QTime(10, 0), QTimeZone::utc());
    for (const QString& name : QDir(sample.filePath(QStringLiteral("Links"))).entryList(QDir::Files)) {
        const QString copy = target.filePath(QStringLiteral("Links/") + name);
        QFile::copy(sample.filePath(QStringLiteral("Links/") + name), copy);
        QFile link(copy);
        if (link.open(QIODevice::ReadWrite))
            link.setFileTime(placed, QFileDevice::FileModificationTime);
    }
    return document;
}

} // namespace quillon::test
