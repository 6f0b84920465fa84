#include "PlatformServices.h"

namespace orvanta::services {

PlatformServices& PlatformServices::current()
{
    static PlatformServices services;
    return services;
}

} // namespace orvanta::services
