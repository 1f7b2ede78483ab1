#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace quillon::fileinspect {

// Width and height of a page in points.
struct PageSize {
    double width = 0;
    double height = 0;
};

// The start of every PDF file; it may follow up to a kilobyte of other bytes.
inline constexpr char kPdfHeader[] = "%PDF-";

// True when `head` (the start of a file) holds the PDF header within its first kilobyte.
bool hasPdfHeader(QByteArrayView head);

// The size of the first page's media box, or nothing when the document has no page; an Error
// (naming the file) when it is not a PDF that can be read: only a file with the PDF header is
// handed to qpdf, and a large one is not scanned whole to repair damage.
app::Result<std::optional<PageSize>> firstPageSize(const QString& path);
// The same for a PDF in memory; `name` names it in messages.
app::Result<std::optional<PageSize>> firstPageSizeOfBytes(const QByteArray& bytes, const QString& name);

} // namespace quillon::fileinspect
