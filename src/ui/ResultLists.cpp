#include "ui/ResultLists.h"

#include "inspection/ColorRecordKeys.h"
#include "inspection/FontRecordKeys.h"
#include "links/LinkRecordKeys.h"
#include "results/ColorResults.h"
#include "results/LinkResults.h"
#include "results/ResultKeys.h"
#include "ui/Icons.h"

#include <QColor>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QHash>
#include <QMimeDatabase>

namespace quillon::ui {

namespace lk = links;
namespace ik = inspection;
using Comparison = results::SortDescriptor::Comparison;

namespace {

const QString kAlertHeaderImage = QStringLiteral("HeaderTriangle");
const QString kOkHeaderImage = QStringLiteral("ok-header");

ResultColumn textColumn(const QString& key, const QString& title, int width,
                        Comparison comparison = Comparison::CaseInsensitive, const QString& toolTip = {},
                        const QString& sortKey = {})
{
    return {key, title, {}, toolTip, sortKey, comparison, false, width};
}

// A narrow column under a picture header; `imageOnly` unless its cells show a short text.
ResultColumn pictureColumn(const QString& key, const QString& headerImage, const QString& toolTip,
                           const QString& sortKey = {}, bool imageOnly = true)
{
    return {key, {}, headerImage, toolTip, sortKey, Comparison::Plain, imageOnly, imageOnly ? 28 : 36};
}

ResultColumn alertColumn()
{
    return pictureColumn(results::kAlertKey, kAlertHeaderImage, {}, results::kAlertNameKey);
}

// The picture of a file's type, looked up once per extension: ten thousand links share a few.
QIcon fileTypeIcon(const QString& path)
{
    static QHash<QString, QIcon> cache;
    const QString suffix = QFileInfo(path).suffix().toLower();
    const auto found = cache.constFind(suffix);
    if (found != cache.constEnd())
        return *found;
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    QIcon icon = QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
    if (icon.isNull())
        icon = QFileIconProvider().icon(QFileIconProvider::File);
    cache.insert(suffix, icon);
    return icon;
}

QString alertsToolTip(const QVariantMap& record)
{
    return results::allAlertsOfItemForToolTip(record.value(results::kAlertsKey).toMap());
}

// The alert column of every list: the warning picture with every alert in its tool tip.
QVariant alertCell(const QVariantMap& record, int role)
{
    if (!results::hasAlerts(record))
        return {};
    if (role == Qt::ToolTipRole)
        return alertsToolTip(record);
    return ResultModel::imageDataFor(results::kImageWarning, role);
}

// A text cell that turns red when its column has an alert.
QVariant judgedText(const QVariantMap& record, const QString& key, int role)
{
    switch (role) {
    case Qt::DisplayRole:
        return record.value(key).toString();
    case Qt::ForegroundRole:
        return ResultModel::foregroundFor(results::hasAlertFor(record, key));
    case Qt::ToolTipRole:
        return results::hasAlertFor(record, key)
                   ? QVariant(results::alertTexts(record.value(results::kAlertsKey).toMap().value(key)).join(u'\n'))
                   : QVariant();
    default:
        return {};
    }
}

QColor swatchColor(const QVariantMap& record)
{
    using Kind = results::QNColorsOutlineController::SwatchSample::Kind;
    const auto sample = results::QNColorsOutlineController::swatchSample(
        record.value(ik::kColorSpaceKey).toString(), record.value(ik::kColorValuesListKey).toList());
    const QList<double>& c = sample.components;
    switch (sample.kind) {
    case Kind::DeviceCMYK:
        return QColor::fromCmykF(float(c.at(0)), float(c.at(1)), float(c.at(2)), float(c.at(3)));
    case Kind::DeviceRGB:
        return QColor::fromRgbF(float(c.at(0)), float(c.at(1)), float(c.at(2)));
    case Kind::HSB:
        return QColor::fromHsvF(float(c.at(0)), float(c.at(1)), float(c.at(2)));
    case Kind::White:
        return QColor(Qt::white);
    case Kind::Hidden:
        break;
    }
    return QColor(Qt::transparent); // keeps the names of rows without a sample in line
}

} // namespace

LinksModel::LinksModel(QObject* parent)
    : ResultModel(
          QStringLiteral("LINKS"),
          {
              textColumn(lk::kLinkNameKey, {}, 200, Comparison::Natural),
              alertColumn(),
              pictureColumn(results::kStatusImgKey, kOkHeaderImage,
                            QStringLiteral("Link status (OK, Modified, Missing or Embedded)"), lk::kLinkStatusKey),
              textColumn(lk::kLinkPageKey, QStringLiteral("Page"), 60, Comparison::Natural),
              textColumn(lk::kLinkKindKey, QStringLiteral("Kind"), 76),
              textColumn(lk::kLinkColorKey, QStringLiteral("Color"), 76),
              textColumn(lk::kLinkProfileKey, QStringLiteral("ICC Profile"), 110),
              textColumn(lk::kLinkSizeKey, QStringLiteral("Size"), 62, Comparison::Plain, {}, lk::kLinkSizeBytesKey),
              textColumn(lk::kLinkActualResKey, QStringLiteral("Actual"), 52, Comparison::Natural,
                         QStringLiteral("Actual (original) image resolution")),
              textColumn(lk::kLinkEffectiveResKey, QStringLiteral("Effective"), 64, Comparison::Natural,
                         QStringLiteral("Effective resolution of image in InDesign")),
              textColumn(lk::kLinkScaleKey, QStringLiteral("Scale"), 50, Comparison::Natural),
              textColumn(lk::kLinkEpsFontsKey, QStringLiteral("Fonts"), 48, Comparison::Natural,
                         QStringLiteral("Fonts in Illustrator files (.ai and .eps)")),
              textColumn(lk::kLinkEpsColsKey, QStringLiteral("Spots"), 48, Comparison::Natural,
                         QStringLiteral("Spot colors in Photoshop and Illustrator files")),
              textColumn(lk::kLinkPrintKey, QStringLiteral("Print"), 40, Comparison::Plain,
                         QStringLiteral("Print status")),
          },
          parent)
{
}

Qt::ItemFlags LinksModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = ResultModel::flags(index);
    if (m_editable && m_renamer && index.isValid() && !isGroup(index) &&
        results::QNLinksOutline::shouldEditName(record(index), columns().at(index.column()).key, false))
        flags |= Qt::ItemIsEditable;
    return flags;
}

bool LinksModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    return m_renamer(index, value.toString());
}

QVariant LinksModel::recordData(const QVariantMap& record, const ResultColumn& column, int role) const
{
    const QString& key = column.key;
    if (key == results::kAlertKey)
        return alertCell(record, role);
    if (key == results::kStatusImgKey) {
        if (role == Qt::ToolTipRole)
            return record.value(lk::kLinkStatusKey);
        return imageDataFor(record.value(results::kStatusImgKey).toString(), role);
    }
    if (key == lk::kLinkNameKey) {
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return record.value(key).toString();
        case Qt::ForegroundRole:
            return foregroundFor(results::hasAlerts(record));
        case Qt::ToolTipRole:
            return record.value(lk::kLinkPathKey);
        case Qt::DecorationRole:
            return record.value(results::kIconKey).toString() == results::kImageFileIcon
                       ? QVariant(fileTypeIcon(record.value(lk::kLinkPathKey).toString()))
                       : QVariant();
        default:
            return {};
        }
    }
    if (role == PullDownItemsRole)
        return key.startsWith(QLatin1String("eps")) ? results::QNLinksOutline::epsPullDownItems(record, key)
                                                    : QStringList();
    if (role == Qt::TextAlignmentRole && key != lk::kLinkKindKey && key != lk::kLinkColorKey &&
        key != lk::kLinkProfileKey)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    return judgedText(record, key, role);
}

FontsModel::FontsModel(QObject* parent)
    : ResultModel(
          QStringLiteral("FONTS"),
          {
              textColumn(ik::kFontNameKey, {}, 210, Comparison::Natural),
              alertColumn(),
              pictureColumn(results::kStatusIconKey, kOkHeaderImage,
                            QStringLiteral("Font status (OK, Missing, Fauxed or Substituted)"), ik::kFontStatusKey),
              textColumn(ik::kFontTypeKey, QStringLiteral("Type"), 110),
              pictureColumn(ik::kFontEmbedKey, QStringLiteral("pdf-embed-header"),
                            QStringLiteral("Whether embedding in PDF is allowed"), {}, false),
              textColumn(ik::kFontPsFontKey, QStringLiteral("PostScript Name"), 170),
              textColumn(ik::kFontPathKey, QStringLiteral("Location"), 260),
          },
          parent)
{
}

QVariant FontsModel::recordData(const QVariantMap& record, const ResultColumn& column, int role) const
{
    const QString& key = column.key;
    if (key == results::kAlertKey)
        return alertCell(record, role);
    if (key == results::kStatusIconKey) {
        if (role == Qt::ToolTipRole)
            return record.value(ik::kFontStatusKey);
        return imageDataFor(record.value(key).toString(), role);
    }
    if (key == ik::kFontNameKey) {
        if (role == Qt::ForegroundRole)
            return foregroundFor(results::hasAlerts(record));
        if (role == Qt::DisplayRole)
            return record.value(key).toString();
        return {};
    }
    if (key == ik::kFontTypeKey && (role == Qt::DecorationRole || role == ImageNameRole))
        return imageDataFor(record.value(results::kTypeIconKey).toString(), role);
    if (key == ik::kFontEmbedKey && role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignCenter);
    return judgedText(record, key, role);
}

ColorsModel::ColorsModel(QObject* parent)
    : ResultModel(QStringLiteral("COLORS"),
                  {
                      textColumn(ik::kColorNameKey, {}, 170, Comparison::Natural),
                      alertColumn(),
                      pictureColumn(ik::kColorModelKey, QStringLiteral("color-spot-header"),
                                    QStringLiteral("Color model (process/spot/mixed ink)")),
                      pictureColumn(ik::kColorSpaceKey, QStringLiteral("color-mode-header"),
                                    QStringLiteral("Color space (CMYK/RGB/HSB/Lab)")),
                      pictureColumn(ik::kColorUsedKey, QStringLiteral("used-header"),
                                    QStringLiteral("Usage status (whether color is used in document)"), {}, false),
                      textColumn(ik::kColorValueKey, QStringLiteral("Values"), 130, Comparison::Natural,
                                 QStringLiteral("Color component values")),
                  },
                  parent)
{
}

QVariant ColorsModel::recordData(const QVariantMap& record, const ResultColumn& column, int role) const
{
    const QString& key = column.key;
    if (key == results::kAlertKey)
        return alertCell(record, role);
    if (key == ik::kColorNameKey) {
        switch (role) {
        case Qt::DisplayRole:
            return record.value(key).toString();
        case Qt::ForegroundRole:
            return foregroundFor(results::hasAlerts(record));
        case Qt::ToolTipRole:
            return results::hasAlerts(record) ? QVariant(alertsToolTip(record)) : QVariant();
        case Qt::DecorationRole: {
            return swatchColor(record);
        }
        default:
            return {};
        }
    }
    if (key == ik::kColorModelKey || key == ik::kColorSpaceKey) {
        const QString value = record.value(key).toString();
        const QString image = key == ik::kColorModelKey ? results::QNColorsOutlineController::imageForSpotValue(value)
                                                        : results::QNColorsOutlineController::imageForColorSpace(value);
        if (role == BorderColorRole)
            return results::hasAlertFor(record, key) ? QVariant(QColor(0xCC, 0x10, 0x10)) : QVariant();
        if (role == Qt::ToolTipRole)
            return results::hasAlertFor(record, key) ? judgedText(record, key, role) : QVariant(value);
        return imageDataFor(image, role);
    }
    if (key == ik::kColorUsedKey && role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignCenter);
    return judgedText(record, key, role);
}

} // namespace quillon::ui
