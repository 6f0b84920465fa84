#include "PropertyValue.h"

#include "StringRef.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace orvanta::hal {

UInt32 propertyDataSize(const PropertyValue& value)
{
    return std::visit(
        [](const auto& v) -> UInt32 {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, std::string>) {
                return sizeof(StringRef);
            } else if constexpr (std::is_same_v<T, std::vector<AudioObjectID>>) {
                return static_cast<UInt32>(v.size() * sizeof(AudioObjectID));
            } else {
                return sizeof(T);
            }
        },
        value);
}

OSStatus copyPropertyData(const PropertyValue& value, UInt32& ioDataSize, void* outData)
{
    if (const auto* ids = std::get_if<std::vector<AudioObjectID>>(&value)) {
        const std::size_t count = std::min<std::size_t>(ioDataSize / sizeof(AudioObjectID), ids->size());
        if (count > 0) {
            std::memcpy(outData, ids->data(), count * sizeof(AudioObjectID));
        }
        ioDataSize = static_cast<UInt32>(count * sizeof(AudioObjectID));
        return noErr;
    }
    const UInt32 needed = propertyDataSize(value);
    if (ioDataSize < needed || !outData) {
        return kAudioHardwareBadPropertySizeError;
    }
    std::visit(
        [outData](const auto& v) {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, std::string>) {
                const StringRef ref = createStringRef(v);
                std::memcpy(outData, &ref, sizeof ref);
            } else if constexpr (!std::is_same_v<T, std::vector<AudioObjectID>>) {
                std::memcpy(outData, &v, sizeof v);
            }
        },
        value);
    ioDataSize = needed;
    return noErr;
}

} // namespace orvanta::hal
