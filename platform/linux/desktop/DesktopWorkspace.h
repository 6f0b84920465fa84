#pragma once

// Opens addresses with the desktop's default handler (the browser for web addresses).

#include "services/Workspace.h"

namespace orvanta::desktop {

class DesktopWorkspace final : public services::Workspace
{
public:
    bool openUrl(const QUrl& url) override;
};

} // namespace orvanta::desktop
