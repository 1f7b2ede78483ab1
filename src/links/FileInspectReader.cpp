#include "links/LinkedFileReader.h"

#include "fileinspect/QNPreflightMethods.h"

namespace quillon::links {

namespace {

using fileinspect::QNPreflightMethods;

// The readers of the file-inspection layer. A reader object keeps the state of the last file it
// read and belongs to one thread, so every call takes a fresh one: calls come from several
// threads at once, and a reader costs next to nothing to make.
class FileInspectReader : public LinkedFileReader {
public:
    QString readFileAtPath(const QString& path, qint64 length) const override
    {
        return QNPreflightMethods().readFileAtPath(path, length);
    }

    std::optional<QString> psdProfileName(const QString& path) const override
    {
        const QStringList properties = QNPreflightMethods().psdPropsFromData(path);
        if (properties.isEmpty())
            return std::nullopt;
        return properties.first();
    }

    QString psdDuotoneColors(const QString& path) const override { return QNPreflightMethods().psdDuotoneColors(path); }

    QString colorModeOfAIFile(const QString& path) const override
    {
        return QNPreflightMethods().colorModeOfAIFile(path);
    }

    QString imageProfileName(const QString& path, const QString& type) const override
    {
        QNPreflightMethods reader;
        // Always false by its contract: the profile is what it read.
        reader.readFromURL(path, type);
        return reader.profName();
    }

    PreCS3AIHead read4500AndFontsOfPreCS3AI(const QString& path, app::AlertSink* alerts) const override
    {
        const QNPreflightMethods::AIHeadAndFonts found = QNPreflightMethods(alerts).read4500AndFontsOfPreCS3AI(path);
        return {found.head, found.fonts};
    }

    std::optional<VectorEPSFacts> readEPS1500AtPath(const QString& path, const QString& read1500,
                                                    app::AlertSink* alerts) const override
    {
        const QVariantList facts = QNPreflightMethods(alerts).readEPS1500AtPath(path, read1500);
        if (facts.size() < 5)
            return std::nullopt;
        return VectorEPSFacts{facts[0], facts[1], facts[2], facts[3], facts[4]};
    }

    QString getRead1500ForPhotoshopEPSWithTIFFPreview(const QString& path, app::AlertSink* alerts) const override
    {
        return QNPreflightMethods(alerts).getRead1500ForPhotoshopEPSWithTIFFPreview(path);
    }
};

} // namespace

std::unique_ptr<LinkedFileReader> makeLinkedFileReader()
{
    return std::make_unique<FileInspectReader>();
}

} // namespace quillon::links
