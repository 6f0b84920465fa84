// Orvanta's entry point. For now it chooses the sound system and prints the output devices
// the audio layer finds there.

#include "AudioBackend.h"
#include "CatalogueReport.h"
#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"

#include <cstdio>

int main()
{
    using namespace orvanta;
    auto backend = app::chooseAudioBackend();
    if (!backend.hardware) {
        std::fprintf(stderr, "orvanta: %s\n", backend.error.c_str());
        return 2;
    }
    std::printf("%s\n", backend.description.c_str());
    audio::AudioWrapper::usePlatform(*backend.hardware, core::standardOutputLog());
    std::fputs(app::catalogueReport(audio::AudioWrapper::shared()).c_str(), stdout);
    return 0;
}
