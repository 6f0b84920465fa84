#include "SimulatedWorkspace.h"

namespace orvanta::sim {

bool SimulatedWorkspace::openUrl(const QUrl& url)
{
    opened.append(url);
    return true;
}

} // namespace orvanta::sim
