#include "inspection/ParaStylesReport.h"

#include "app/Numbers.h"

#include <QStringList>

namespace quillon::inspection {

namespace {

void appendStyle(QStringList& lines, const ParaStyleUse& style, bool withCount)
{
    if (withCount)
        lines.append(QStringLiteral("%1: %2 %3")
                         .arg(style.name)
                         .arg(style.paragraphs)
                         .arg(style.paragraphs == 1 ? QStringLiteral("paragraph") : QStringLiteral("paragraphs")));
    else
        lines.append(style.name);
    auto detail = [&](const char* label, const QString& value) {
        if (!value.isEmpty())
            lines.append(QStringLiteral("  %1: %2").arg(QLatin1String(label), value));
    };
    detail("Based on", style.basedOn);
    detail("Font", style.font);
    detail("Size", style.size);
    detail("Leading", style.leading);
    lines.append(QString());
}

} // namespace

QString pointsText(const QString& points)
{
    bool ok = false;
    const double value = points.toDouble(&ok);
    if (!ok)
        return points;
    return app::formatTwoDecimals(value) + QStringLiteral(" pt");
}

QString leadingText(const QString& leading, const QString& pointSize, const QString& autoLeadingPercent)
{
    if (leading.compare(QLatin1String("auto"), Qt::CaseInsensitive) != 0)
        return pointsText(leading);
    bool sizeOk = false;
    bool percentOk = false;
    const double size = pointSize.toDouble(&sizeOk);
    const double percent = autoLeadingPercent.toDouble(&percentOk);
    if (!sizeOk || !percentOk)
        return QStringLiteral("Auto");
    return QStringLiteral("Auto (%1)").arg(pointsText(QString::number(size * percent / 100.0, 'g', 12)));
}

QString paraStylesReportText(const QList<ParaStyleUse>& styles)
{
    QList<ParaStyleUse> used;
    QList<ParaStyleUse> unused;
    for (const ParaStyleUse& style : styles)
        (style.paragraphs > 0 ? used : unused).append(style);
    QStringList lines;
    if (!used.isEmpty()) {
        lines << QStringLiteral("Paragraph styles in use (%1)").arg(used.size()) << QString();
        for (const ParaStyleUse& style : std::as_const(used))
            appendStyle(lines, style, true);
    }
    if (!unused.isEmpty()) {
        lines << QStringLiteral("Paragraph styles no paragraph uses (%1)").arg(unused.size()) << QString();
        for (const ParaStyleUse& style : std::as_const(unused))
            appendStyle(lines, style, false);
    }
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines.join(u'\n');
}

} // namespace quillon::inspection
