#include "DelayMeasurementChoice.h"

#include "pipewire/MicrophoneMeasurement.h"
#include "pipewire/PipeWireAudioHardware.h"

namespace orvanta::app {

std::unique_ptr<services::DelayMeasurement> delayMeasurementFor(hal::AudioHardware& hardware)
{
    if (auto* pipeWire = dynamic_cast<pipewire::PipeWireAudioHardware*>(&hardware)) {
        return std::make_unique<pipewire::MicrophoneMeasurement>(*pipeWire);
    }
    return nullptr;
}

} // namespace orvanta::app
