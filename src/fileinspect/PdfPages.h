#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QString>

namespace quillon::fileinspect {

// Width and height of a page in points.
struct PageSize {
    double width = 0;
    double height = 0;
};

// The size of the first page's media box, or nothing when the document has no page; an Error
// (naming the file) when it is not a PDF that can be read.
app::Result<std::optional<PageSize>> firstPageSize(const QString& path);
// The same for a PDF in memory; `name` names it in messages.
app::Result<std::optional<PageSize>> firstPageSizeOfBytes(const QByteArray& bytes, const QString& name);

} // namespace quillon::fileinspect
