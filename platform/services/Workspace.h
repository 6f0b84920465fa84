#pragma once

// The user's desktop: opens web addresses in the default browser.

#include <QUrl>

namespace orvanta::services {

class Workspace
{
public:
    virtual ~Workspace() = default;

    // True when the address was handed to a browser.
    virtual bool openUrl(const QUrl& url) = 0;

protected:
    Workspace() = default;
    Workspace(const Workspace&) = default;
    Workspace& operator=(const Workspace&) = default;
};

} // namespace orvanta::services
