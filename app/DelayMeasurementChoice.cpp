#include "DelayMeasurementChoice.h"

#include "MicrophoneMeasurement.h"
#include "PipeWireAudioHardware.h"

namespace orvanta::app {

std::unique_ptr<platform::DelayMeasurement> delayMeasurementFor(hal::AudioHardware& hardware)
{
    if (auto* pipeWire = dynamic_cast<pipewire::PipeWireAudioHardware*>(&hardware)) {
        return std::make_unique<pipewire::MicrophoneMeasurement>(*pipeWire);
    }
    return nullptr;
}

} // namespace orvanta::app
