#include "ui/Icons.h"

#include <QFile>

namespace quillon::ui {

QIcon namedIcon(const QString& imageName)
{
    const QString path = QStringLiteral(":/icons/%1.svg").arg(imageName);
    if (imageName.isEmpty() || !QFile::exists(path))
        return {};
    return QIcon(path);
}

} // namespace quillon::ui
