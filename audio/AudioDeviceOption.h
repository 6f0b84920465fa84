#pragma once

// One output device as the rest of the program sees it. Equal and hashed over all three fields,
// so a device whose name changed between two readings of the catalogue is a different record.

#include <cstddef>
#include <functional>
#include <string>

namespace orvanta::audio {

struct AudioDeviceOption
{
    std::string name;
    std::string uid; // the key of every per-device setting
    bool isBluetooth = false;

    friend bool operator==(const AudioDeviceOption&, const AudioDeviceOption&) = default;
};

} // namespace orvanta::audio

template <> struct std::hash<orvanta::audio::AudioDeviceOption>
{
    std::size_t operator()(const orvanta::audio::AudioDeviceOption& option) const noexcept
    {
        // Feeds name, then uid, then the flag, combining as boost::hash_combine does.
        std::size_t seed = 0;
        const auto combine = [&seed](std::size_t value) {
            seed ^= value + 0x9e3779b97f4a7c15ULL + (seed << 6) + (seed >> 2);
        };
        combine(std::hash<std::string>{}(option.name));
        combine(std::hash<std::string>{}(option.uid));
        combine(std::hash<bool>{}(option.isBluetooth));
        return seed;
    }
};
