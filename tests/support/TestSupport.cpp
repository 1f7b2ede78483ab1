#include "support/TestSupport.h"

#include <QDir>
#include <QFile>

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

} // namespace quillon::test
