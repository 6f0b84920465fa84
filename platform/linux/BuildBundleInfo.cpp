#include "BuildBundleInfo.h"

namespace orvanta::linux_platform {

BuildBundleInfo::BuildBundleInfo(const QString& version)
{
    if (!version.isEmpty()) {
        shortVersion = version;
    }
}

} // namespace orvanta::linux_platform
