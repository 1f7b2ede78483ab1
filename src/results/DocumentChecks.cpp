#include "results/DocumentChecks.h"

#include "app/Numbers.h"
#include "app/Records.h"
#include "app/Settings.h"
#include "results/PresetKeys.h"

#include <cmath>
#include <optional>

namespace quillon::results {

namespace {

// Differences below this are the noise of unit conversions: 3 mm is 8.50394 pt, stored rounded.
constexpr double kLengthNoise = 0.01;

struct Unit {
    QLatin1String name;
    double perPoint;
};
constexpr Unit kUnits[] = {{QLatin1String("pt"), 1.0},
                           {QLatin1String("mm"), 25.4 / 72.0},
                           {QLatin1String("cm"), 2.54 / 72.0},
                           {QLatin1String("in"), 1.0 / 72.0}};

// Reads the checks of one preset, turning every value it cannot use into a warning.
class CheckReader {
public:
    CheckReader(const QVariantMap& checks, QStringList& warnings) : m_checks(checks), m_warnings(warnings) {}

    void warn(const QString& key, const QString& problem)
    {
        m_warnings << QStringLiteral("%1/%2 not checked: %3").arg(kPresetDocumentKey, key, problem);
    }

    std::optional<double> length(const QString& key)
    {
        if (!m_checks.contains(key))
            return std::nullopt;
        const QVariant value = m_checks.value(key);
        const double points = value.toDouble();
        if (!app::isNumberValue(value) || !std::isfinite(points) || points < 0) {
            warn(key, QStringLiteral("\"%1\" is no length in points (0 or more)").arg(value.toString()));
            return std::nullopt;
        }
        return points;
    }

    std::optional<qint64> count(const QString& key)
    {
        if (!m_checks.contains(key))
            return std::nullopt;
        const QVariant value = m_checks.value(key);
        const double number = value.toDouble();
        if (!app::isNumberValue(value) || number < 0 || number != std::floor(number) || number > 1e9) {
            warn(key, QStringLiteral("\"%1\" is no page count (0 or more)").arg(value.toString()));
            return std::nullopt;
        }
        return static_cast<qint64>(number);
    }

    bool flag(const QString& key)
    {
        const QVariant value = m_checks.value(key);
        if (value.isNull())
            return false;
        if (!app::isNumberValue(value) && value.typeId() != QMetaType::Bool) {
            warn(key, QStringLiteral("\"%1\" is not a state (0 or 1)").arg(value.toString()));
            return false;
        }
        return app::variantToBool(value);
    }

    Unit unit()
    {
        const QString name = m_checks.value(kDocUnitKey, QStringLiteral("pt")).toString();
        for (const Unit& unit : kUnits)
            if (name == unit.name)
                return unit;
        warn(kDocUnitKey, QStringLiteral("\"%1\" is none of pt, mm, cm, in; shown in pt").arg(name));
        return kUnits[0];
    }

private:
    const QVariantMap& m_checks;
    QStringList& m_warnings;
};

QString lengthText(double points, const Unit& unit)
{
    return app::formatTwoDecimals(points * unit.perPoint) + u' ' + unit.name;
}

QString sizeText(double width, double height, const Unit& unit)
{
    return app::formatTwoDecimals(width * unit.perPoint) + QStringLiteral(" x ") + lengthText(height, unit);
}

struct MeasuredSize {
    double width;
    double height;
    qsizetype pages;
    bool near(double w, double h, double tolerance) const
    {
        return std::abs(width - w) <= tolerance + kLengthNoise && std::abs(height - h) <= tolerance + kLengthNoise;
    }
};

QList<MeasuredSize> measuredSizes(const inspection::QNDocInfo& info)
{
    QList<MeasuredSize> sizes;
    for (const inspection::DocPageSize& size : info.docPageSizes())
        sizes.append({inspection::doubleFromString(size.width), inspection::doubleFromString(size.height),
                      size.pageNames.size()});
    return sizes;
}

QString measuredSizeText(const MeasuredSize& size, const Unit& unit)
{
    return QStringLiteral("%1 (%2 %3)")
        .arg(sizeText(size.width, size.height, unit))
        .arg(size.pages)
        .arg(size.pages == 1 ? QStringLiteral("page") : QStringLiteral("pages"));
}

void checkMinimum(CheckReader& reader, const QString& key, const QString& what, std::optional<double> measured,
                  const Unit& unit, DocumentJudgement& judgement)
{
    const std::optional<double> minimum = reader.length(key);
    if (!minimum)
        return;
    if (!measured)
        reader.warn(key, QStringLiteral("the document's %1 could not be read").arg(what.toLower()));
    else if (*measured < *minimum - kLengthNoise)
        judgement.alerts.append(
            {key, QStringLiteral("%1 %2 < %3").arg(what, lengthText(*measured, unit), lengthText(*minimum, unit))});
}

void checkPageSizes(CheckReader& reader, const QVariantMap& checks, const inspection::QNDocInfo& info, const Unit& unit,
                    DocumentJudgement& judgement)
{
    const std::optional<double> width = reader.length(kDocPageWidthKey);
    const std::optional<double> height = reader.length(kDocPageHeightKey);
    const double tolerance = reader.length(kDocPageSizeToleranceKey).value_or(0.0);
    const bool same = reader.flag(kDocSamePageSizeKey);
    const bool expected = checks.contains(kDocPageWidthKey) || checks.contains(kDocPageHeightKey);
    if (expected && checks.contains(kDocPageWidthKey) != checks.contains(kDocPageHeightKey))
        reader.warn(checks.contains(kDocPageWidthKey) ? kDocPageWidthKey : kDocPageHeightKey,
                    QStringLiteral("%1 and %2 are given together").arg(kDocPageWidthKey, kDocPageHeightKey));
    if ((!width || !height) && !same)
        return;
    const QList<MeasuredSize> sizes = measuredSizes(info);
    if (sizes.isEmpty()) {
        reader.warn(width && height ? QStringLiteral("pageSize") : kDocSamePageSizeKey,
                    QStringLiteral("the document's page sizes could not be read"));
        return;
    }
    if (width && height) {
        const QString tolerated = tolerance > 0 ? QStringLiteral(" \u00b1 ") + lengthText(tolerance, unit) : QString();
        for (const MeasuredSize& size : sizes)
            if (!size.near(*width, *height, tolerance))
                judgement.alerts.append(
                    {QStringLiteral("pageSize"),
                     QStringLiteral("Page size %1 \u2260 %2%3")
                         .arg(measuredSizeText(size, unit), sizeText(*width, *height, unit), tolerated)});
    }
    if (!same)
        return;
    QStringList seen{measuredSizeText(sizes.first(), unit)};
    for (const MeasuredSize& size : sizes.mid(1))
        if (!size.near(sizes.first().width, sizes.first().height, tolerance))
            seen << measuredSizeText(size, unit);
    if (seen.size() > 1)
        judgement.alerts.append({kDocSamePageSizeKey, QStringLiteral("Mixed page sizes: %1").arg(seen.join(u", "))});
}

void checkPageCount(CheckReader& reader, const inspection::QNDocInfo& info, DocumentJudgement& judgement)
{
    const std::optional<qint64> minimum = reader.count(kDocMinPagesKey);
    const std::optional<qint64> maximum = reader.count(kDocMaxPagesKey);
    if (!minimum && !maximum)
        return;
    bool read = false;
    const qint64 pages = info.numberOfPagesStr().trimmed().toLongLong(&read);
    if (!read) {
        reader.warn(minimum ? kDocMinPagesKey : kDocMaxPagesKey,
                    QStringLiteral("the document's page count could not be read"));
        return;
    }
    if (minimum && maximum && *minimum > *maximum)
        reader.warn(kDocMinPagesKey, QStringLiteral("%1 is above %2").arg(kDocMinPagesKey, kDocMaxPagesKey));
    else if (minimum && pages < *minimum)
        judgement.alerts.append({kDocMinPagesKey, QStringLiteral("Pages %1 < %2").arg(pages).arg(*minimum)});
    else if (maximum && pages > *maximum)
        judgement.alerts.append({kDocMaxPagesKey, QStringLiteral("Pages %1 > %2").arg(pages).arg(*maximum)});
}

} // namespace

std::optional<DocumentLength> documentLengthOfText(const QString& text)
{
    const QString trimmed = text.trimmed();
    for (const Unit& unit : kUnits) {
        if (!trimmed.endsWith(unit.name))
            continue;
        bool ok = false;
        const double number = trimmed.chopped(unit.name.size()).trimmed().toDouble(&ok);
        if (!ok || !std::isfinite(number) || number < 0)
            return std::nullopt;
        // Five decimals keep a round trip through the unit exact to far below the noise of lengths.
        return DocumentLength{std::round(number / unit.perPoint * 1e5) / 1e5, unit.name};
    }
    return std::nullopt;
}

QStringList documentUnitNames()
{
    QStringList names;
    for (const Unit& unit : kUnits)
        names << unit.name;
    return names;
}

DocumentJudgement judgeDocument(const QVariantMap& checks, const inspection::QNDocInfo& info)
{
    DocumentJudgement judgement;
    judgement.checked = !checks.isEmpty();
    if (!judgement.checked)
        return judgement;
    CheckReader reader(checks, judgement.warnings);
    static const QStringList known{kDocMinBleedKey,   kDocMinSlugKey,           kDocPageWidthKey,
                                   kDocPageHeightKey, kDocPageSizeToleranceKey, kDocMinPagesKey,
                                   kDocMaxPagesKey,   kDocSamePageSizeKey,      kDocUnitKey};
    for (auto it = checks.cbegin(); it != checks.cend(); ++it)
        if (!known.contains(it.key()))
            reader.warn(it.key(), QStringLiteral("no document check has this name"));
    const Unit unit = reader.unit();
    checkMinimum(reader, kDocMinBleedKey, QStringLiteral("Bleed"), info.bleedPoints(), unit, judgement);
    checkMinimum(reader, kDocMinSlugKey, QStringLiteral("Slug"), info.slugPoints(), unit, judgement);
    checkPageSizes(reader, checks, info, unit, judgement);
    checkPageCount(reader, info, judgement);
    return judgement;
}

} // namespace quillon::results
