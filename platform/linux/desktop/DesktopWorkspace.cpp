#include "DesktopWorkspace.h"

#include <QDesktopServices>

namespace orvanta::desktop {

bool DesktopWorkspace::openUrl(const QUrl& url)
{
    return QDesktopServices::openUrl(url);
}

} // namespace orvanta::desktop
