#pragma once

// A property's value in one of the layouts the hardware interface uses, and how backends copy
// it into a caller's buffer with the interface's size rules.

#include "AudioTypes.h"

#include <string>
#include <variant>
#include <vector>

namespace orvanta::hal {

using PropertyValue = std::variant<std::string, UInt32, Float32, Float64, std::vector<AudioObjectID>>;

// Bytes the value takes: strings are one 8-byte reference, arrays 4 bytes an entry.
UInt32 propertyDataSize(const PropertyValue& value);

// Writes the value into outData. Arrays are cut to whole entries that fit and ioDataSize says
// how many bytes were written; scalars need room for all of themselves. Strings are handed
// out as a new StringRef that the caller owns.
OSStatus copyPropertyData(const PropertyValue& value, UInt32& ioDataSize, void* outData);

} // namespace orvanta::hal
