// Fuzz target: the Illustrator reader (colour model lines, PostScript head, font names).
#include "fileinspect/QNPreflightMethods.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    using namespace quillon::fileinspect;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const ByteSource file = ByteSource::fromBytes(bytes);
    QNPreflightMethods reader;
    reader.colorModeOfAIFile(file);
    reader.read4500AndFontsOfPreCS3AI(file);
    QNPreflightMethods::illustratorVersion(textFromBytes(bytes.left(4500)));
    return 0;
}
