#pragma once

#include <QList>
#include <QString>

namespace quillon::inspection {

// One paragraph style as the paragraph-styles report lists it. Texts are as shown to the user.
struct ParaStyleUse {
    QString name;
    QString basedOn; // empty for a style based on nothing
    QString font;    // family and style, "Minion Pro Regular"
    QString size;    // "12 pt"
    QString leading; // "14 pt", or "Auto (14.4 pt)" for automatic leading
    int paragraphs = 0;
};

// A size in points as the report writes it: "10.5 pt"; empty for an empty value.
QString pointsText(const QString& points);

// Leading as the report writes it: a size in points, or for automatic leading "Auto" with the
// resulting size when the point size and the automatic percentage are known ("Auto (14.4 pt)").
QString leadingText(const QString& leading, const QString& pointSize, const QString& autoLeadingPercent);

// The report: the styles some paragraph uses, each with its count, then the styles no paragraph
// uses, each with its based-on style, font, size and leading, in the order given. Empty when
// there are no styles.
QString paraStylesReportText(const QList<ParaStyleUse>& styles);

} // namespace quillon::inspection
