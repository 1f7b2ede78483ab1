// Fuzz target: the metadata rows (EXIF, TIFF, IPTC, GPS through the metadata library) and the
// PDF page size.
#include "fileinspect/ImageMetadata.h"
#include "fileinspect/PXMetadataController.h"
#include "fileinspect/PdfPages.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace quillon::fileinspect;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto metadata = readImageMetadataOfBytes(bytes, QStringLiteral("input"));
    if (metadata.ok()) {
        PXMetadataController controller;
        controller.rowsFromMetadata(metadata.value());
    }
    if (bytes.startsWith("%PDF"))
        (void)firstPageSizeOfBytes(bytes, QStringLiteral("input"));
    return 0;
}
