#pragma once

// A desktop that records the addresses it is asked to open, for tests.

#include "services/Workspace.h"

#include <QList>

namespace orvanta::sim {

class SimulatedWorkspace final : public services::Workspace
{
public:
    bool openUrl(const QUrl& url) override;

    QList<QUrl> opened;
};

} // namespace orvanta::sim
