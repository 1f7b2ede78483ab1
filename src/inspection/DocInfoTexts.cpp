#include "inspection/DocInfoTexts.h"

#include "app/Numbers.h"

#include <QSet>

#include <algorithm>

namespace quillon::inspection {

std::optional<UnitConversion> conversionFactorsFromPointsAndAbbrForUnits(const QString& units)
{
    if (units == QLatin1String("Inches"))
        return UnitConversion{0.01389, QStringLiteral("in")};
    if (units == QLatin1String("Millimeters"))
        return UnitConversion{0.3528, QStringLiteral("mm")};
    if (units == QLatin1String("Centimeters"))
        return UnitConversion{0.0353, QStringLiteral("cm")};
    if (units == QLatin1String("Pixels"))
        return UnitConversion{1.333, QStringLiteral("px")};
    return std::nullopt;
}

UnitConversion conversionOrPoints(const QString& units)
{
    return conversionFactorsFromPointsAndAbbrForUnits(units).value_or(UnitConversion{1.0, QStringLiteral("pt")});
}

double doubleFromString(const QString& text)
{
    const QString trimmed = text.trimmed();
    const QChar separator = !trimmed.contains(u'.') && trimmed.contains(u',') ? u',' : u'.';
    qsizetype end = 0;
    if (end < trimmed.size() && (trimmed.at(end) == u'-' || trimmed.at(end) == u'+'))
        ++end;
    qsizetype digits = 0;
    auto takeDigits = [&] {
        while (end < trimmed.size() && trimmed.at(end).isDigit() && trimmed.at(end).unicode() < 128) {
            ++end;
            ++digits;
        }
    };
    takeDigits();
    if (end < trimmed.size() && trimmed.at(end) == separator) {
        ++end;
        takeDigits();
    }
    if (digits == 0)
        return 0.0;
    qsizetype numberEnd = end;
    // An exponent counts only when digits follow it.
    if (end < trimmed.size() && (trimmed.at(end) == u'e' || trimmed.at(end) == u'E')) {
        qsizetype e = end + 1;
        if (e < trimmed.size() && (trimmed.at(e) == u'-' || trimmed.at(e) == u'+'))
            ++e;
        const qsizetype expStart = e;
        while (e < trimmed.size() && trimmed.at(e).isDigit() && trimmed.at(e).unicode() < 128)
            ++e;
        if (e > expStart)
            numberEnd = e;
    }
    QString number = trimmed.left(numberEnd);
    number.replace(separator, u'.');
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok ? value : 0.0;
}

bool stringBoolValue(const QString& text)
{
    const QString trimmed = text.trimmed();
    qsizetype i = 0;
    if (i < trimmed.size() && (trimmed.at(i) == u'-' || trimmed.at(i) == u'+'))
        ++i;
    while (i < trimmed.size() && trimmed.at(i) == u'0')
        ++i;
    if (i >= trimmed.size())
        return false;
    const QChar c = trimmed.at(i);
    return c == u'Y' || c == u'y' || c == u'T' || c == u't' || (c >= u'1' && c <= u'9');
}

QString pageSizeText(const PageSizesDict& pageSizes, const QString& horizUnits, const QString& vertUnits)
{
    (void)vertUnits; // both dimensions are shown in the horizontal units
    if (pageSizes.size() != 1)
        return pageSizes.isEmpty() ? QStringLiteral("?") : QStringLiteral("<mixed>");
    const QStringList size = pageSizes.firstKey();
    const UnitConversion conversion = conversionOrPoints(horizUnits);
    const int decimals = horizUnits == QLatin1String("Millimeters") ? 1 : 2;
    const double width = doubleFromString(size.value(0)) * conversion.factor;
    const double height = doubleFromString(size.value(1)) * conversion.factor;
    return QStringLiteral("%1 x %2 %3")
        .arg(app::formatDecimal(width, decimals), app::formatDecimal(height, decimals), conversion.abbreviation);
}

QString bleedOrSlugText(const BleedOrSlugValues& values, const QString& horizUnits)
{
    const bool uniform = stringBoolValue(values.uniformFlag);
    const bool allEqual =
        !uniform && QSet<QString>{values.top, values.bottom, values.insideOrLeft, values.outsideOrRight}.size() == 1;
    const UnitConversion conversion = conversionOrPoints(horizUnits);
    auto shown = [&](const QString& value) {
        const QString text = app::formatTwoDecimals(doubleFromString(value) * conversion.factor);
        return text == QLatin1String("-0") ? QStringLiteral("0") : text;
    };
    if (uniform || allEqual) {
        const QString value = shown(values.top);
        return value == QLatin1String("0") ? QStringLiteral("-")
                                           : QStringLiteral("%1 %2").arg(value, conversion.abbreviation);
    }
    return QStringLiteral("%1, %2, %3, %4 %5")
        .arg(shown(values.top), shown(values.bottom), shown(values.insideOrLeft), shown(values.outsideOrRight),
             conversion.abbreviation);
}

double narrowestSideInPoints(const BleedOrSlugValues& values)
{
    if (stringBoolValue(values.uniformFlag))
        return doubleFromString(values.top);
    return std::min({doubleFromString(values.top), doubleFromString(values.bottom),
                     doubleFromString(values.insideOrLeft), doubleFromString(values.outsideOrRight)});
}

} // namespace quillon::inspection
