#pragma once

// A string reference as a string-valued property hands it out: one pointer-sized word. The
// callee creates the string and the caller owns it afterwards, as with the Core Foundation
// "create rule"; OwnedString takes that ownership so nothing leaks on any path.

#include <memory>
#include <string>
#include <utility>

namespace orvanta::hal {

struct PlatformString
{
    std::string text;
};

using StringRef = const PlatformString*;

static_assert(sizeof(StringRef) == 8, "a string reference is one 8-byte word");

// For backends: a new reference that the caller will own.
inline StringRef createStringRef(std::string text)
{
    return new PlatformString{std::move(text)};
}

// For callers: holds a reference read into a slot and releases it.
class OwnedString
{
public:
    explicit OwnedString(StringRef ref) : owned(ref) {}

    std::string text() const { return owned ? owned->text : std::string(); }

private:
    std::unique_ptr<const PlatformString> owned;
};

} // namespace orvanta::hal
