#include "fileinspect/PXEXIFData.h"

#include <QStringList>
#include <QVariantList>

namespace quillon::fileinspect {

namespace {

QVariantMap decoded(const QString& tagName, const QString& parsedValue)
{
    return {{exifkeys::kTagName, tagName}, {exifkeys::kParsedValue, parsedValue}};
}

// The code of a value that is one number (or a list of one), or nothing.
std::optional<qlonglong> codeOf(const QVariant& value)
{
    const QVariant single =
        value.typeId() == QMetaType::QVariantList && value.toList().size() == 1 ? value.toList().first() : value;
    bool ok = false;
    const qlonglong code = single.toLongLong(&ok);
    if (!ok || single.typeId() == QMetaType::QVariantList)
        return std::nullopt;
    return code;
}

// A code looked up in a table; codes outside it read as their number.
std::optional<QVariantMap> fromTable(const QString& tagName, const QVariant& value,
                                     const QMap<qlonglong, QString>& table)
{
    const std::optional<qlonglong> code = codeOf(value);
    if (!code)
        return std::nullopt;
    return decoded(tagName, table.value(*code, QString::number(*code)));
}

} // namespace

const QMap<QString, QString>& PXEXIFData::EXIFTags()
{
    static const QMap<QString, QString> tags{
        {QStringLiteral("Orientation"), QStringLiteral("selector")},
        {QStringLiteral("SensingMethod"), QStringLiteral("selector")},
        {QStringLiteral("Flash"), QStringLiteral("selector")},
        {QStringLiteral("ComponentsConfiguration"), QStringLiteral("selector")},
        {QStringLiteral("InteropIndex"), QStringLiteral("selector")},
        {QStringLiteral("SubfileType"), QStringLiteral("selector")},
        {QStringLiteral("PhotometricInterpretation"), QStringLiteral("selector")},
        {QStringLiteral("Thresholding"), QStringLiteral("selector")},
    };
    return tags;
}

std::optional<QVariantMap> PXEXIFData::decode(const QString& key, const QVariant& value)
{
    using Decoder = std::optional<QVariantMap> (*)(const QVariant&);
    static const QMap<QString, Decoder> decoders{
        {QStringLiteral("Orientation"), &PXEXIFData::Orientation},
        {QStringLiteral("SensingMethod"), &PXEXIFData::SensingMethod},
        {QStringLiteral("Flash"), &PXEXIFData::Flash},
        {QStringLiteral("ComponentsConfiguration"), &PXEXIFData::ComponentsConfiguration},
        {QStringLiteral("InteropIndex"), &PXEXIFData::InteropIndex},
        {QStringLiteral("SubfileType"), &PXEXIFData::SubfileType},
        {QStringLiteral("PhotometricInterpretation"), &PXEXIFData::PhotometricInterpretation},
        {QStringLiteral("Thresholding"), &PXEXIFData::Thresholding},
    };
    const Decoder decoder = decoders.value(key, nullptr);
    return decoder ? decoder(value) : std::nullopt;
}

std::optional<QVariantMap> PXEXIFData::Orientation(const QVariant& value)
{
    static const QMap<qlonglong, QString> table{
        {1, QStringLiteral("Horizontal (normal)")},
        {2, QStringLiteral("Mirror horizontal")},
        {3, QStringLiteral("Rotate 180")},
        {4, QStringLiteral("Mirror vertical")},
        {5, QStringLiteral("Mirror horizontal and rotate 270 CW")},
        {6, QStringLiteral("Rotate 90 CW")},
        {7, QStringLiteral("Mirror horizontal and rotate 90 CW")},
        {8, QStringLiteral("Rotate 270 CW")},
    };
    return fromTable(QStringLiteral("Orientation"), value, table);
}

std::optional<QVariantMap> PXEXIFData::SensingMethod(const QVariant& value)
{
    static const QMap<qlonglong, QString> table{
        {1, QStringLiteral("Not defined")},
        {2, QStringLiteral("One-chip color area sensor")},
        {3, QStringLiteral("Two-chip color area sensor")},
        {4, QStringLiteral("Three-chip color area sensor")},
        {5, QStringLiteral("Color sequential area sensor")},
        {7, QStringLiteral("Trilinear sensor")},
        {8, QStringLiteral("Color sequential linear sensor")},
    };
    return fromTable(QStringLiteral("Sensing Method"), value, table);
}

std::optional<QVariantMap> PXEXIFData::Flash(const QVariant& value)
{
    // Bit 0: fired; bits 1-2: return light; bits 3-4: mode; bit 5: no flash; bit 6: red-eye.
    const std::optional<qlonglong> code = codeOf(value);
    if (!code)
        return std::nullopt;
    const qlonglong flash = *code;
    const QString tagName = QStringLiteral("Flash");
    if (flash == 0)
        return decoded(tagName, QStringLiteral("No Flash"));
    const qlonglong mode = (flash >> 3) & 3;
    if (flash & 0x20)
        return decoded(tagName,
                       mode == 2 ? QStringLiteral("Off, No flash function") : QStringLiteral("No flash function"));
    QStringList parts;
    if (mode == 1)
        parts << QStringLiteral("On");
    else if (mode == 2)
        parts << QStringLiteral("Off");
    else if (mode == 3)
        parts << QStringLiteral("Auto");
    parts << ((flash & 1) ? QStringLiteral("Fired") : QStringLiteral("Did not fire"));
    const qlonglong returnLight = (flash >> 1) & 3;
    if (returnLight == 2)
        parts << QStringLiteral("Return not detected");
    else if (returnLight == 3)
        parts << QStringLiteral("Return detected");
    if (flash & 0x40)
        parts << QStringLiteral("Red-eye reduction");
    return decoded(tagName, parts.join(QStringLiteral(", ")));
}

std::optional<QVariantMap> PXEXIFData::ComponentsConfiguration(const QVariant& value)
{
    static const QStringList channels{QStringLiteral("-"),  QStringLiteral("Y"), QStringLiteral("Cb"),
                                      QStringLiteral("Cr"), QStringLiteral("R"), QStringLiteral("G"),
                                      QStringLiteral("B")};
    const QVariantList codes = value.typeId() == QMetaType::QVariantList ? value.toList() : QVariantList{value};
    QStringList parts;
    for (const QVariant& code : codes) {
        bool ok = false;
        const int channel = code.toInt(&ok);
        if (!ok)
            return std::nullopt;
        parts << channels.value(channel, QString::number(channel));
    }
    return decoded(QStringLiteral("Components Configuration"), parts.join(QStringLiteral(", ")));
}

std::optional<QVariantMap> PXEXIFData::InteropIndex(const QVariant& value)
{
    static const QMap<QString, QString> table{
        {QStringLiteral("R98"), QStringLiteral("R98 - DCF basic file (sRGB)")},
        {QStringLiteral("R03"), QStringLiteral("R03 - DCF option file (Adobe RGB)")},
        {QStringLiteral("THM"), QStringLiteral("THM - DCF thumbnail file")},
    };
    if (!value.canConvert<QString>() || value.typeId() == QMetaType::QVariantList)
        return std::nullopt;
    const QString index = value.toString();
    return decoded(QStringLiteral("Interoperability Index"), table.value(index, index));
}

std::optional<QVariantMap> PXEXIFData::SubfileType(const QVariant& value)
{
    static const QMap<qlonglong, QString> table{
        {0, QStringLiteral("Full-resolution image")},
        {1, QStringLiteral("Reduced-resolution image")},
        {2, QStringLiteral("Single page of multi-page image")},
        {3, QStringLiteral("Single page of multi-page reduced-resolution image")},
        {4, QStringLiteral("Transparency mask")},
        {5, QStringLiteral("Transparency mask of reduced-resolution image")},
        {6, QStringLiteral("Transparency mask of multi-page image")},
        {7, QStringLiteral("Transparency mask of reduced-resolution multi-page image")},
    };
    return fromTable(QStringLiteral("Subfile Type"), value, table);
}

std::optional<QVariantMap> PXEXIFData::PhotometricInterpretation(const QVariant& value)
{
    static const QMap<qlonglong, QString> table{
        {0, QStringLiteral("WhiteIsZero")},
        {1, QStringLiteral("BlackIsZero")},
        {2, QStringLiteral("RGB")},
        {3, QStringLiteral("RGB Palette")},
        {4, QStringLiteral("Transparency Mask")},
        {5, QStringLiteral("CMYK")},
        {6, QStringLiteral("YCbCr")},
        {8, QStringLiteral("CIELab")},
        {9, QStringLiteral("ICCLab")},
        {10, QStringLiteral("ITULab")},
        {32803, QStringLiteral("Color Filter Array")},
        {32844, QStringLiteral("Pixar LogL")},
        {32845, QStringLiteral("Pixar LogLuv")},
        {34892, QStringLiteral("Linear Raw")},
    };
    return fromTable(QStringLiteral("Photometric Interpretation"), value, table);
}

std::optional<QVariantMap> PXEXIFData::Thresholding(const QVariant& value)
{
    static const QMap<qlonglong, QString> table{
        {1, QStringLiteral("No dithering or halftoning")},
        {2, QStringLiteral("Ordered dither or halftone")},
        {3, QStringLiteral("Randomized dither")},
    };
    return fromTable(QStringLiteral("Thresholding"), value, table);
}

} // namespace quillon::fileinspect
