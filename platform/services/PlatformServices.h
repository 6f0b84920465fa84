#pragma once

// The services the program uses besides the sound system, chosen once in main() (the real
// ones, or simulated ones in tests) and read by the shared objects when they are created.

namespace orvanta::services {

class UserDefaults;
class LoginItems;
class AccessibilityTrust;
class EventTap;
class HttpClient;
class Alerts;
class Workspace;
class BundleInfo;

struct PlatformServices
{
    UserDefaults* userDefaults = nullptr;
    LoginItems* loginItems = nullptr;
    AccessibilityTrust* accessibilityTrust = nullptr;
    EventTap* eventTap = nullptr;
    HttpClient* http = nullptr;
    Alerts* alerts = nullptr;
    Workspace* workspace = nullptr;
    BundleInfo* bundle = nullptr;

    // The services in use; main() fills them in before any shared object is created.
    static PlatformServices& current();
};

} // namespace orvanta::services
