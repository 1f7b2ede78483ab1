#include "preflight/PreflightFolders.h"

#include "app/AppPaths.h"

#include <QDir>

namespace quillon::preflight {

PreflightFolders PreflightFolders::systemFolders()
{
    return {app::temporaryFolder(), app::workFolder()};
}

PreflightFolders PreflightFolders::inside(const QString& root)
{
    const QString data = QDir::cleanPath(root);
    const QString work = data + QStringLiteral("/Quillon");
    return {data, QDir().mkpath(work) ? work : data};
}

} // namespace quillon::preflight
