#pragma once

// Opens addresses with the desktop's default handler (the browser for web addresses).

#include "services/Workspace.h"

namespace orvanta::linux_platform {

class DesktopWorkspace final : public platform::Workspace
{
public:
    bool openUrl(const QUrl& url) override;
};

} // namespace orvanta::linux_platform
