#pragma once

// The metadata library (exiv2), opened and read in one place: set up once for the process, its
// exceptions turned into Errors at the call. For this layer's own files only.

#include "app/RegularFile.h"
#include "app/Result.h"

#include <QByteArray>
#include <QString>

// exiv2 0.27's headers still name std::auto_ptr.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <exiv2/exiv2.hpp>
#pragma GCC diagnostic pop

#include <exception>

namespace quillon::fileinspect::metadatalibrary {

// Quiet, and its XMP toolkit made safe for several threads. Called by the readers below.
void setUpOnce();

// Opens the image with `open`, reads its metadata and gives what `use` makes of it.
template <typename Use, typename Open>
auto readWith(const QString& name, Open open, Use use) -> app::Result<decltype(use(std::declval<Exiv2::Image&>()))>
{
    setUpOnce();
    try {
        auto image = open();
        if (!image.get())
            return app::makeError(QStringLiteral("The file is not an image the metadata reader knows."), name);
        image->readMetadata();
        return use(*image);
    } catch (const std::exception& e) {
        return app::makeError(QStringLiteral("The metadata could not be read: %1").arg(QString::fromUtf8(e.what())),
                              name);
    } catch (...) {
        return app::makeError(QStringLiteral("The metadata could not be read."), name);
    }
}

// The image file at `path`; only regular files (the library would wait on a named pipe).
template <typename Use>
auto readFile(const QString& path, Use use) -> app::Result<decltype(use(std::declval<Exiv2::Image&>()))>
{
    if (app::Status regular = app::checkRegularFile(path); !regular)
        return regular.error();
    const std::string localPath = app::localBytesOfPath(path).toStdString();
    return readWith(
        path, [&] { return Exiv2::ImageFactory::open(localPath, false); }, use);
}

// An image in memory; `name` names it in messages.
template <typename Use> auto readBytes(const QByteArray& bytes, const QString& name, Use use)
{
    return readWith(
        name,
        [&] {
            return Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte*>(bytes.constData()),
                                             long(bytes.size()));
        },
        use);
}

} // namespace quillon::fileinspect::metadatalibrary
