#include "app/Result.h"

#include "app/RegularFile.h"

namespace quillon::app {

QString Error::text() const
{
    QString place = displayPath(file);
    if (!where.isEmpty())
        place = place.isEmpty() ? where : QStringLiteral("%1 (%2)").arg(place, where);
    return place.isEmpty() ? message : QStringLiteral("%1: %2").arg(place, message);
}

Error makeError(QString message, QString file, QString where)
{
    return Error{std::move(message), std::move(file), std::move(where)};
}

} // namespace quillon::app
