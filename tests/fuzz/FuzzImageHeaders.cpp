// Fuzz target: the image-properties headers (JPEG, PNG, TIFF, Photoshop) and profile names.
#include "fileinspect/IccProfile.h"
#include "fileinspect/ImageSource.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace quillon::fileinspect;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    readImageProperties(ByteSource::fromBytes(bytes));
    iccProfileDescription(bytes);
    return 0;
}
