#include "Pods.h"

#include "DelayLine.h"

#include "PipeWireApi.h"
#include <spa/param/audio/format-utils.h>

namespace orvanta::pipewire {

const spa_pod* stereoFormat(spa_pod_builder& builder)
{
    spa_audio_info_raw info{};
    info.format = SPA_AUDIO_FORMAT_F32;
    info.rate = kRate;
    info.channels = kChannels;
    info.position[0] = SPA_AUDIO_CHANNEL_FL;
    info.position[1] = SPA_AUDIO_CHANNEL_FR;
    return spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &info);
}

const spa_pod* latencyParam(spa_pod_builder& builder, const spa_latency_info& info)
{
    return spa_latency_build(&builder, SPA_PARAM_Latency, &info);
}

} // namespace orvanta::pipewire
