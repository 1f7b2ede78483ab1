// Fuzz target: the EPS reader (structuring comments, thumbnail skip, embedded fonts, preview
// header).
#include "fileinspect/QNPreflightMethods.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace quillon::fileinspect;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const ByteSource file = ByteSource::fromBytes(bytes);
    QNPreflightMethods reader;
    const QString head = textFromBytes(bytes.left(1500));
    reader.readEPS1500(file, head);
    reader.spotColorsOfVectorEPS(head);
    reader.getRead1500ForPhotoshopEPSWithTIFFPreview(file);
    reader.embeddedFontsOfVectorEPS(file);
    return 0;
}
