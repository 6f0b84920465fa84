#pragma once

// Test sounds that the members of the stacked device play in place of what players send, each
// from a set frame of the stacked device's own clock. A measurement hands over one script (a
// mono track per member UID) and the data thread plays it from the first cycle that sees it.
// The script replaces what each member's tap renders, so the members' hold-backs do not apply:
// the microphone hears the speakers' own lateness and nothing the stacked device adds. While a
// script plays, the members play nothing else.
//
// arm() is for the thread that owns the stacked device; everything else runs on the data
// thread. A script crosses over through one atomic and is never changed once handed over.

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orvanta::pipewire {

struct ProbeScript
{
    std::vector<std::pair<std::string, std::vector<float>>> tracks; // member UID -> its track
    std::size_t frames() const;
};

class ProbeCue
{
public:
    // The script to play from the next cycle on, or null to stop. The caller keeps it alive
    // until the data thread has passed a cycle after a stop.
    void arm(const ProbeScript* script) { pending.store(script, std::memory_order_release); }

    // Data thread, once per cycle before any member renders: cycleStart is the line position of
    // the cycle's first frame.
    void beginCycle(std::uint64_t cycleStart);
    // Data thread: writes the member's part of the script over out (interleaved stereo) and
    // says whether it did. Members without a track play silence while a script runs.
    bool render(const std::string& uid, std::uint64_t cycleStart, float* out, std::uint32_t frames) const;

private:
    std::atomic<const ProbeScript*> pending{nullptr};
    const ProbeScript* active = nullptr; // data thread only
    std::uint64_t origin = 0;            // data thread only: the line position of the script's first frame
};

} // namespace orvanta::pipewire
