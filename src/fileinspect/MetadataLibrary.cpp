#include "fileinspect/MetadataLibrary.h"

#include <mutex>

namespace quillon::fileinspect::metadatalibrary {

void setUpOnce()
{
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        static std::mutex xmpMutex;
        Exiv2::XmpParser::initialize(
            [](void* data, bool lock) {
                auto* mutex = static_cast<std::mutex*>(data);
                lock ? mutex->lock() : mutex->unlock();
            },
            &xmpMutex);
    });
}

} // namespace quillon::fileinspect::metadatalibrary
