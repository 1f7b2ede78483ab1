// Fuzz target: the Photoshop reader (resources, profile name, duotone inks, alpha names).
#include "fileinspect/QNPreflightMethods.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace quillon::fileinspect;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const ByteSource file = ByteSource::fromBytes(bytes);
    QNPreflightMethods reader;
    reader.psdPropsFromData(file);
    reader.psdDuotoneColors(file);
    reader.resOfOldPSD(file);
    reader.profileName(bytes, file);
    QNPreflightMethods::alphaNames(bytes);
    return 0;
}
