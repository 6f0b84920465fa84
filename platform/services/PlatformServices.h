#pragma once

// The services the program uses besides the sound system, chosen once in main() (the real
// ones, or simulated ones in tests) and handed to the objects that use them.

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
};

} // namespace orvanta::services
