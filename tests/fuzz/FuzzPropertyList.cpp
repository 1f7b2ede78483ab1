// Fuzz target: the property-list reader (XML and binary), the format of presets and records.
#include "app/PropertyList.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto value = quillon::app::parsePropertyList(bytes, QStringLiteral("(fuzz)"));
    // A failure always says where and what.
    if (!value.ok() && value.error().message.isEmpty())
        __builtin_trap();
    return 0;
}
