#include "fileinspect/IccProfile.h"

#include "fileinspect/ByteSource.h"

#include <lcms2.h>

#include <memory>
#include <vector>

namespace quillon::fileinspect {

QString iccProfileDescription(QByteArrayView profile)
{
    // Shorter than a profile header: not worth asking the library.
    if (profile.size() < 132)
        return {};
    const std::unique_ptr<void, decltype(&cmsCloseProfile)> handle(
        cmsOpenProfileFromMem(profile.data(), static_cast<cmsUInt32Number>(profile.size())), &cmsCloseProfile);
    if (!handle)
        return {};
    const cmsUInt32Number bytes = cmsGetProfileInfo(handle.get(), cmsInfoDescription, "en", "US", nullptr, 0);
    if (bytes < sizeof(wchar_t))
        return {};
    std::vector<wchar_t> text(bytes / sizeof(wchar_t) + 1, L'\0');
    cmsGetProfileInfo(handle.get(), cmsInfoDescription, "en", "US", text.data(),
                      static_cast<cmsUInt32Number>(text.size() * sizeof(wchar_t)));
    return withoutControlCharacters(QString::fromWCharArray(text.data()));
}

} // namespace quillon::fileinspect
