// The image-properties side of the linked-file reader: profile name and TIFF compression of
// JPEG, PNG, TIFF and Photoshop files.
#include "fileinspect/QNPreflightMethods.h"

#include "app/Log.h"
#include "fileinspect/ImageSource.h"

namespace quillon::fileinspect {

bool QNPreflightMethods::readFromURL(const QString& path, const QString& type, app::Error* error)
{
    return readFromURL(ByteSource::openFile(path), type, error);
}

bool QNPreflightMethods::readFromURL(const ByteSource& file, const QString& type, app::Error* error)
{
    app::logLine(QStringLiteral("> readFromURL: %1").arg(file.path()));
    m_metadata.clear();
    m_profName.clear();
    if (const std::optional<ImageProperties> properties = readImageProperties(file)) {
        m_metadata = imagePropertiesDictionary(*properties);
        m_profName = properties->profileName;
        if (type.contains(QLatin1String("tif")))
            m_tiffCompression = properties->tiffCompression;
    }
    // Callers read profName and tiffCompr; the answer has always been "not read", with this error.
    if (error)
        *error = app::makeError(QStringLiteral("The file couldn't be opened because it isn't in the correct format."),
                                file.path());
    return false;
}

std::optional<QString> QNPreflightMethods::tiffCompr() const
{
    return m_tiffCompression ? tiffCompressionName(*m_tiffCompression) : std::nullopt;
}

std::optional<QString> QNPreflightMethods::tiffCompressionName(int code)
{
    switch (code) {
    case 1:
        return QString();
    case 5:
        return QStringLiteral("LZW");
    case 7:
        return QStringLiteral("JPEG");
    case 8:
        return QStringLiteral("ZIP");
    default:
        return std::nullopt;
    }
}

} // namespace quillon::fileinspect
