#include "reportpdf/ReportRenderer.h"

#include "app/Company.h"
#include "results/ResultKeys.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QIODevice>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

#include <optional>

namespace quillon::reportpdf {

namespace {

// The PDF writer runs at 720 dpi so that glyph positions are not rounded to whole points.
constexpr int kResolution = 720;
constexpr double kFooterPt = 22;
constexpr double kIndentPt = 14;
constexpr double kSummaryRowSpacingPt = 2.25;
constexpr double kCellPaddingPt = 3;
constexpr double kSwatchPt = 6;

const QColor kAlertColor(0xC0, 0x10, 0x10);
const QColor kCleanColor(0x1E, 0x7B, 0x34);
const QColor kShade(0xF0, 0xF0, 0xF0);
const QColor kHeaderShade(0xDC, 0xDC, 0xDC);
const QColor kRuleColor(0x90, 0x90, 0x90);
const QColor kFooterColor(0x50, 0x50, 0x50);
// The colours of the note mark the annotations draw over link names.
const QColor kNoteMark = QColor::fromRgbF(1, 0.82f, 0.1f);
const QColor kNoteMarkEdge = QColor::fromRgbF(0.45f, 0.35f, 0);

QFont reportFont(double points, bool bold)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(points);
    font.setBold(bold);
    return font;
}

// Lays the report out twice with the same code: once without a painter to count the pages (the
// footers say "of m"), then painting.
class PagePainter {
public:
    PagePainter(QPagedPaintDevice& writer, QPainter* painter, int totalPages, double scale)
        : m_writer(writer), m_painter(painter), m_totalPages(totalPages), m_unit(writer.logicalDpiY() / 72.0 * scale),
          m_scale(scale), m_width(writer.width()), m_bottom(writer.height() - u(kFooterPt)), m_body(systemFont(9)),
          m_bold(systemFont(9, true)), m_cell(systemFont(7.5)), m_cellBold(systemFont(7.5, true)),
          m_small(systemFont(7)), m_page(writer.pageLayout().fullRectPoints())
    {
    }

    int pageCount() const { return m_pageIndex + 1; }
    QList<PlacedAnnotation> takeAnnotations() { return std::move(m_annotations); }

    void paintSection(const ReportSection& section, bool first)
    {
        m_section = &section;
        if (!first)
            newPage();
        paintHeader(section);
        paintSummary(section);
        paintOutline(section.fonts, QStringLiteral("No fonts"), false);
        paintOutline(section.colors, QStringLiteral("No colors"), false);
        paintOutline(section.links, QStringLiteral("No links"), true);
        paintParaStyles(section.paraStyles);
    }

    void finish() { paintFooter(); }

private:
    // Device units of `points`, scaled.
    double u(double points) const { return points * m_unit; }

    // Fonts are given in points of the device; the scale makes them smaller or larger with the rest.
    QFont systemFont(double points, bool bold = false) const { return reportFont(points * m_scale, bold); }

    double lineHeight(const QFont& font) const { return QFontMetricsF(font, &m_writer).height(); }

    void text(const QFont& font, const QColor& color, const QRectF& box, int flags, const QString& line)
    {
        if (!m_painter)
            return;
        m_painter->setFont(font);
        m_painter->setPen(color);
        const QString shown =
            QFontMetricsF(font, &m_writer)
                .elidedText(line, flags & Qt::AlignRight ? Qt::ElideLeft : Qt::ElideRight, box.width());
        m_painter->drawText(box, flags | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    }

    void fill(const QRectF& box, const QColor& color)
    {
        if (m_painter)
            m_painter->fillRect(box, color);
    }

    void paintSwatch(const QRectF& box, const QColor& color, const QColor& edge = kRuleColor)
    {
        if (!m_painter)
            return;
        m_painter->setPen(QPen(edge, u(0.4)));
        m_painter->setBrush(color);
        m_painter->drawRect(box);
        m_painter->setBrush(Qt::NoBrush);
    }

    void rule(double y)
    {
        if (!m_painter)
            return;
        m_painter->setPen(QPen(kRuleColor, u(0.5)));
        m_painter->drawLine(QPointF(0, y), QPointF(m_width, y));
    }

    // A device rectangle of the current page in PDF points (origin bottom left).
    QRectF pdfRect(const QRectF& box) const
    {
        const double perPoint = m_writer.logicalDpiY() / 72.0;
        const QRectF paintRect = m_writer.pageLayout().paintRectPoints();
        const double left = paintRect.left() + box.left() / perPoint;
        const double top = paintRect.top() + box.top() / perPoint;
        return {left, m_page.height() - top - box.height() / perPoint, box.width() / perPoint, box.height() / perPoint};
    }

    void annotate(PlacedAnnotation::Kind kind, const QRectF& box, const QString& value)
    {
        if (m_painter)
            m_annotations.append({kind, m_pageIndex, pdfRect(box), value});
    }

    void newPage()
    {
        paintFooter();
        if (m_painter)
            m_writer.newPage();
        ++m_pageIndex;
        m_y = 0;
    }

    // Starts a new page unless `height` fits under the cursor; true when it did.
    bool makeRoom(double height)
    {
        if (m_y + height <= m_bottom || m_y == 0)
            return false;
        newPage();
        return true;
    }

    void paintFooter()
    {
        if (!m_painter || !m_section)
            return;
        const double h = lineHeight(m_small);
        const double y = m_writer.height() - h;
        rule(y - u(3));
        const QFontMetricsF metrics(m_small, &m_writer);
        const QString web = QString::fromLatin1(app::kCompanyWebAddress);
        const QString support = QString::fromLatin1(app::kSupportAddress);
        const QString separator = QStringLiteral("  |  ");
        const double webWidth = metrics.horizontalAdvance(web);
        const double total = webWidth + metrics.horizontalAdvance(separator) + metrics.horizontalAdvance(support);
        const double x = (m_width - total) / 2;
        const QRectF webBox(x, y, webWidth, h);
        const QRectF supportBox(m_width / 2 + total / 2 - metrics.horizontalAdvance(support), y,
                                metrics.horizontalAdvance(support), h);
        text(m_small, kFooterColor, QRectF(0, y, x - u(8), h), Qt::AlignLeft, m_section->docName);
        text(m_small, kFooterColor, QRectF(x, y, total + u(1), h), Qt::AlignLeft, web + separator + support);
        const QString page = QStringLiteral("Page %1 of %2").arg(m_pageIndex + 1).arg(m_totalPages);
        text(m_small, kFooterColor, QRectF(x + total + u(8), y, m_width - x - total - u(8), h), Qt::AlignRight, page);
        annotate(PlacedAnnotation::Kind::Uri, webBox, web);
        annotate(PlacedAnnotation::Kind::Uri, supportBox, QStringLiteral("mailto:") + support);
    }

    void line(const QFont& font, const QColor& color, const QString& content, double x = 0)
    {
        const double h = lineHeight(font);
        makeRoom(h);
        text(font, color, QRectF(x, m_y, m_width - x, h), Qt::AlignLeft, content);
        m_y += h;
    }

    void paintHeader(const ReportSection& section)
    {
        const QFont title = systemFont(15, true);
        const double h = lineHeight(title);
        text(title, Qt::black, QRectF(0, m_y, m_width * 0.6, h), Qt::AlignLeft, QStringLiteral("Quillon Report"));
        text(m_body, kFooterColor, QRectF(m_width * 0.6, m_y, m_width * 0.4, h), Qt::AlignRight, section.creditLine);
        m_y += h + u(4);
        line(systemFont(12, true), Qt::black, section.docName);
        line(m_body, Qt::black, section.pathLabel.isEmpty() ? QString() : section.pathLabel + u' ' + section.docPath);
        line(m_body, Qt::black, QStringLiteral("Checkup preset: ") + section.presetLine);
        line(m_body, Qt::black, section.userLine);
        m_y += u(3);
        line(m_bold, section.hasAlerts ? kAlertColor : kCleanColor, section.statusLine);
        m_y += u(4);
        rule(m_y);
        m_y += u(6);
    }

    double paintSummaryField(const QList<SummaryLine>& lines, double x, double width)
    {
        double y = m_y;
        for (const SummaryLine& summaryLine : lines) {
            const QFont& font = summaryLine.bold ? m_bold : m_body;
            const double h = lineHeight(font);
            QString content = summaryLine.text;
            double indent = 0;
            if (content.startsWith(u'\t')) {
                content.remove(0, 1);
                indent = u(kIndentPt);
            }
            text(font, Qt::black, QRectF(x + indent, y, width - indent, h), Qt::AlignLeft, content);
            y += h + u(kSummaryRowSpacingPt);
        }
        return y;
    }

    void paintSummary(const ReportSection& section)
    {
        const double half = m_width / 2;
        const double end = std::max(paintSummaryField(section.summaryField1, 0, half - u(6)),
                                    paintSummaryField(section.summaryField2, half, half));
        m_y = end + u(6);
    }

    void paintHeaderRow(const PrintOutline& outline, bool continued)
    {
        const QFont title = systemFont(11, true);
        const double titleHeight = lineHeight(title);
        const QString heading = QStringLiteral("%1 %2 %3%4")
                                    .arg(outline.title, results::kBullet)
                                    .arg(outline.rows.size())
                                    .arg(continued ? QStringLiteral(" (continued)") : QString());
        text(title, Qt::black, QRectF(0, m_y, m_width, titleHeight), Qt::AlignLeft, heading);
        if (!outline.legend.isEmpty() && !outline.rows.isEmpty()) {
            const double legendWidth = QFontMetricsF(m_small, &m_writer).horizontalAdvance(outline.legend) + u(1);
            const double x = m_width - legendWidth;
            paintSwatch(QRectF(x - u(kSwatchPt + 3), m_y + (titleHeight - u(5)) / 2, u(5), u(5)), kNoteMark,
                        kNoteMarkEdge);
            text(m_small, kFooterColor, QRectF(x, m_y, legendWidth, titleHeight), Qt::AlignLeft, outline.legend);
        }
        m_y += titleHeight + u(2);
        const double h = lineHeight(m_cellBold) + u(2);
        fill(QRectF(0, m_y, m_width, h), kHeaderShade);
        paintCells(outline.headers, outline.columnWidths, {}, m_cellBold, h);
        m_y += h;
    }

    // Paints the cells of one row at the cursor; returns the first cell's box.
    QRectF paintCells(const QStringList& cells, const QList<double>& widths, const QList<int>& alerted,
                      const QFont& font, double height, const std::optional<QColor>& swatch = std::nullopt)
    {
        double x = 0;
        QRectF first;
        for (qsizetype i = 0; i < cells.size() && i < widths.size(); ++i) {
            const double w = widths.at(i) * m_width;
            const QRectF box(x, m_y, w, height);
            if (i == 0)
                first = box;
            const QColor color = alerted.contains(static_cast<int>(i)) ? kAlertColor : Qt::black;
            double chip = 0;
            if (i == 0 && swatch) {
                chip = u(kSwatchPt + kCellPaddingPt);
                paintSwatch(
                    QRectF(x + u(kCellPaddingPt), m_y + (height - u(kSwatchPt)) / 2, u(kSwatchPt), u(kSwatchPt)),
                    *swatch);
            }
            text(font, color, box.adjusted(u(kCellPaddingPt) + chip, 0, -u(kCellPaddingPt), 0), Qt::AlignLeft,
                 cells.at(i));
            x += w;
        }
        return first;
    }

    void paintOutline(const PrintOutline& outline, const QString& emptyText, bool withNotes)
    {
        const double rowHeight = lineHeight(m_cell) + u(2);
        const double alertHeight = lineHeight(m_small) + u(1);
        const double headerHeight = lineHeight(systemFont(11, true)) + u(2) + lineHeight(m_cellBold) + u(2);
        m_y += u(8);
        // The title and header stay with the first row.
        makeRoom(headerHeight + rowHeight);
        paintHeaderRow(outline, false);
        if (outline.rows.isEmpty()) {
            text(m_cell, kFooterColor, QRectF(u(kCellPaddingPt), m_y, m_width, rowHeight), Qt::AlignLeft, emptyText);
            m_y += rowHeight;
            return;
        }
        for (qsizetype r = 0; r < outline.rows.size(); ++r) {
            const OutlineRow& row = outline.rows.at(r);
            const double height = rowHeight + (row.alerts.isEmpty() ? 0 : alertHeight);
            if (makeRoom(height))
                paintHeaderRow(outline, true);
            if (r % 2 == 1)
                fill(QRectF(0, m_y, m_width, height), kShade);
            const QRectF first =
                paintCells(row.cells, outline.columnWidths, row.alertedColumns, m_cell, rowHeight, row.swatch);
            if (withNotes && r < m_section->linkNotes.size())
                annotate(PlacedAnnotation::Kind::Text, first, m_section->linkNotes.at(r).contents());
            m_y += rowHeight;
            if (!row.alerts.isEmpty()) {
                text(m_small, kAlertColor, QRectF(u(kIndentPt), m_y, m_width - u(kIndentPt), alertHeight),
                     Qt::AlignLeft, QStringLiteral("Alert: ") + row.alerts.join(QStringLiteral("; ")));
                m_y += alertHeight;
            }
        }
    }

    void paintParaStyles(const QString& paraStyles)
    {
        if (paraStyles.isEmpty())
            return;
        m_y += u(8);
        const QFont title = systemFont(11, true);
        makeRoom(lineHeight(title) * 2);
        line(title, Qt::black, QStringLiteral("Paragraph Styles"));
        const QFont font = systemFont(11);
        for (const QString& paragraph : paraStyles.split(u'\n'))
            line(font, Qt::black, paragraph);
    }

    QPagedPaintDevice& m_writer;
    QPainter* m_painter;
    int m_totalPages;
    double m_unit;
    double m_scale;
    double m_width;
    double m_bottom;
    QFont m_body;
    QFont m_bold;
    QFont m_cell;
    QFont m_cellBold;
    QFont m_small;
    QRectF m_page;
    const ReportSection* m_section = nullptr;
    int m_pageIndex = 0;
    double m_y = 0;
    QList<PlacedAnnotation> m_annotations;
};

int layOut(QPagedPaintDevice& writer, QPainter* painter, int totalPages, const QList<ReportSection>& sections,
           QList<PlacedAnnotation>* annotations, double scale)
{
    PagePainter pages(writer, painter, totalPages, scale);
    for (qsizetype i = 0; i < sections.size(); ++i)
        pages.paintSection(sections.at(i), i == 0);
    pages.finish();
    if (annotations)
        *annotations = pages.takeAnnotations();
    return pages.pageCount();
}

} // namespace

app::Result<RenderedReport> renderReport(const QList<ReportSection>& sections, QIODevice& device)
{
    QPdfWriter writer(&device);
    writer.setResolution(kResolution);
    writer.setPageLayout(QPageLayout(
        QPageSize(QPageSize::A4), QPageLayout::Portrait,
        QMarginsF(kHorizontalMarginPt, kVerticalMarginPt, kHorizontalMarginPt, kVerticalMarginPt), QPageLayout::Point));
    writer.setCreator(QStringLiteral("Quillon"));
    writer.setTitle(sections.isEmpty() ? QStringLiteral("Quillon Report")
                                       : sections.constFirst().docName + QStringLiteral(" – Quillon Report"));
    const std::optional<RenderedReport> rendered = paintReport(sections, writer);
    if (!rendered)
        return app::makeError(QStringLiteral("the report could not be painted: %1").arg(device.errorString()));
    return *rendered;
}

std::optional<RenderedReport> paintReport(const QList<ReportSection>& sections, QPagedPaintDevice& device, double scale)
{
    RenderedReport rendered;
    rendered.pageCount = layOut(device, nullptr, 0, sections, nullptr, scale);
    QPainter painter;
    if (!painter.begin(&device))
        return std::nullopt;
    layOut(device, &painter, rendered.pageCount, sections, &rendered.annotations, scale);
    if (!painter.end())
        return std::nullopt;
    return rendered;
}

} // namespace quillon::reportpdf
