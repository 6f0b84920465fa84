#include "BuildBundleInfo.h"

namespace orvanta::desktop {

BuildBundleInfo::BuildBundleInfo(const QString& version)
{
    if (!version.isEmpty()) {
        shortVersion = version;
    }
}

} // namespace orvanta::desktop
