#include "app/PathComponents.h"

namespace quillon::app {

QString lastPathComponent(const QString& path)
{
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(u'/'))
        trimmed.chop(1);
    return trimmed == QLatin1String("/") ? trimmed : trimmed.section(u'/', -1);
}

namespace {

// Where the extension's "." is in `path`, or -1.
qsizetype extensionDot(const QString& path)
{
    const qsizetype nameStart = path.lastIndexOf(u'/') + 1;
    const qsizetype dot = path.lastIndexOf(u'.');
    return dot > nameStart ? dot : -1;
}

} // namespace

QString pathExtension(const QString& path)
{
    const qsizetype dot = extensionDot(path);
    return dot < 0 ? QString() : path.mid(dot + 1);
}

QString stringByDeletingPathExtension(const QString& path)
{
    const qsizetype dot = extensionDot(path);
    return dot < 0 ? path : path.left(dot);
}

} // namespace quillon::app
