#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace quillon::inspection {

// Page sizes found in a document's spreads: the key is [width, height] in points as text
// ("###0.####"), the value the names of the pages of that size in the order met.
using PageSizesDict = QMap<QStringList, QStringList>;

// Points to a unit: the factor and the unit's abbreviation. The factors are the rounded values
// the system has always shown (72 pt is 1 in, 595.28 pt is 210.01 mm), used as written.
struct UnitConversion {
    double factor = 1.0;
    QString abbreviation;
};

// The conversion for "Inches", "Millimeters", "Centimeters" and "Pixels"; nothing for any other
// unit name, which callers show in points ("pt", factor 1).
std::optional<UnitConversion> conversionFactorsFromPointsAndAbbrForUnits(const QString& units);
// The same with the points fallback applied.
UnitConversion conversionOrPoints(const QString& units);

// The number at the start of the text (blanks skipped, "." or, when there is no ".", ","
// as the decimal separator), 0 when none.
double doubleFromString(const QString& text);

// What a flag attribute means as a boolean: true when it starts with "Y", "y", "T", "t" or a
// digit 1 to 9 (after blanks and a sign).
bool stringBoolValue(const QString& text);

// The page-size text of the document-information box: "<mixed>" for several sizes, "?" for
// none, otherwise "<width> x <height> <abbreviation>" in the horizontal units, one decimal for
// millimetres and two for every other unit. The vertical units are not used.
QString pageSizeText(const PageSizesDict& pageSizes, const QString& horizUnits, const QString& vertUnits);

// The attributes of a DocumentPreference element that describe the bleed or the slug.
struct BleedOrSlugValues {
    QString top;
    QString uniformFlag;
    QString bottom;
    QString insideOrLeft;
    QString outsideOrRight;
};

// The bleed or slug as shown: "-" when none, "3 mm" when uniform (or all sides equal),
// otherwise "top, bottom, inside, outside abbreviation"; in the horizontal units, two decimals.
QString bleedOrSlugText(const BleedOrSlugValues& values, const QString& horizUnits);

// The narrowest side of the bleed or slug in points (the top alone when the uniform flag is set),
// what a minimum is checked against.
double narrowestSideInPoints(const BleedOrSlugValues& values);

} // namespace quillon::inspection
