#include "links/LinkedFileReader.h"

#include <QFile>

namespace quillon::links {

namespace {

// Until the file-inspection readers are wired in, only file heads are read; the other facts
// give the readers' fallbacks.
class HeadOnlyReader : public LinkedFileReader {
public:
    QString readFileAtPath(const QString& path, qint64 length) const override
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromLatin1(file.read(length));
    }
    std::optional<QString> psdProfileName(const QString&) const override { return QString(); }
    QString psdDuotoneColors(const QString&) const override { return {}; }
    QString colorModeOfAIFile(const QString&) const override { return QStringLiteral("?"); }
    QString imageProfileName(const QString&, const QString&) const override { return {}; }
    PreCS3AIHead read4500AndFontsOfPreCS3AI(const QString&, app::AlertSink*) const override { return {}; }
    std::optional<VectorEPSFacts> readEPS1500AtPath(const QString&, const QString&, app::AlertSink*) const override
    {
        return std::nullopt;
    }
    QString getRead1500ForPhotoshopEPSWithTIFFPreview(const QString&, app::AlertSink*) const override { return {}; }
};

} // namespace

std::unique_ptr<LinkedFileReader> makeLinkedFileReader()
{
    return std::make_unique<HeadOnlyReader>();
}

} // namespace quillon::links
