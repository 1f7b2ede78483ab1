#include "app/Company.h"

namespace quillon::app {

QString supportContactLine()
{
    return QStringLiteral("\n\nWith any questions, contact ") + QLatin1String(kSupportAddress);
}

QString withSupportContact(const QString& message)
{
    return message + supportContactLine();
}

} // namespace quillon::app
