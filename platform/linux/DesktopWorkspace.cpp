#include "DesktopWorkspace.h"

#include <QDesktopServices>

namespace orvanta::linux_platform {

bool DesktopWorkspace::openUrl(const QUrl& url)
{
    return QDesktopServices::openUrl(url);
}

} // namespace orvanta::linux_platform
