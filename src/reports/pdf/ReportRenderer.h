#pragma once

#include "app/Result.h"
#include "reportpdf/PdfAnnotations.h"
#include "reportpdf/ReportContent.h"

#include <QList>
#include <QString>

#include <optional>

class QIODevice;
class QPagedPaintDevice;

namespace quillon::reportpdf {

struct RenderedReport {
    int pageCount = 0;
    QList<PlacedAnnotation> annotations;
};

// The page the report is laid out on: A4 portrait, 24 pt margins left and right, 18 pt top and
// bottom.
inline constexpr double kHorizontalMarginPt = 24;
inline constexpr double kVerticalMarginPt = 18;

// Paints the sections as one PDF onto `device` (open for writing), each section from a new page.
// Rows are never cut across pages; an outline continued on a new page repeats its header. Every
// page has a footer with the section's document, the maker's web and support addresses and
// "Page n of m"; the returned annotations say where the addresses and each link row's first cell
// were painted. Needs a QGuiApplication (the offscreen platform will do).
app::Result<RenderedReport> renderReport(const QList<ReportSection>& sections, QIODevice& device);

// The same onto any paged device (a printer) with its own page layout, everything drawn at
// `scale` (1 full size); nothing when the device cannot be painted on.
std::optional<RenderedReport> paintReport(const QList<ReportSection>& sections, QPagedPaintDevice& device,
                                          double scale = 1.0);

} // namespace quillon::reportpdf
