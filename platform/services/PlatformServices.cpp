#include "PlatformServices.h"

namespace orvanta::platform {

PlatformServices& PlatformServices::current()
{
    static PlatformServices services;
    return services;
}

} // namespace orvanta::platform
