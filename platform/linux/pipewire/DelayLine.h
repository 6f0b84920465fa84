#pragma once

// The heart of the stacked device: what players sent, kept for a while, and read back once per
// member at that member's hold-back. Everything here runs on the audio data thread except
// DelayTap::setHoldBack, which any thread may call: a new hold-back crosses over through one
// atomic, and the tap moves to it with a short crossfade so the change is neither a gap nor a
// click. Nothing here allocates, locks or waits once constructed.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvanta::pipewire {

inline constexpr std::uint32_t kChannels = 2;
inline constexpr std::uint32_t kRate = 48000;

// Interleaved stereo frames in a ring; the write position counts every frame ever written.
class DelayLine
{
public:
    static constexpr std::uint32_t kCapacityFrames = 1u << 16; // 1.36 s at 48 kHz
    // The longest hold-back a tap may ask for, with room left for one large cycle.
    static constexpr std::uint32_t kMaxHoldBackFrames = kCapacityFrames / 2;

    DelayLine();

    void write(const float* interleaved, std::uint32_t frames);
    // Silence in place of frames that were never delivered, so time keeps its pace.
    void writeSilence(std::uint32_t frames);
    std::uint64_t written() const { return writePosition; }

    // One frame, holdBack frames before position; frames never written read as silence.
    const float* frameBefore(std::uint64_t position, std::uint32_t holdBack) const;

private:
    std::vector<float> samples;
    std::uint64_t writePosition = 0;
    static constexpr std::array<float, kChannels> kSilence{};
};

// One member's reader of the line.
class DelayTap
{
public:
    static constexpr std::uint32_t kFadeFrames = 480; // 10 ms at 48 kHz

    DelayTap();

    // Any thread: the hold-back the tap should move to.
    void setHoldBack(std::uint32_t frames);
    std::uint32_t targetHoldBack() const { return target.load(std::memory_order_relaxed); }

    // Data thread: the last `frames` frames written to line, as this member hears them, into
    // out (interleaved stereo). Every sample written is finite and within [-1, 1].
    void render(const DelayLine& line, float* out, std::uint32_t frames);
    // Data thread: the hold-back now in effect (the one being faded to while a fade runs).
    std::uint32_t currentHoldBack() const { return fading ? fadeTo : current; }

private:
    void startFadeIfAsked();

    std::atomic<std::uint32_t> target{0};
    std::uint32_t current = 0;
    std::uint32_t fadeTo = 0;
    std::uint32_t fadeDone = 0;
    bool fading = false;
    bool rendered = false;
    std::array<float, kFadeFrames> fadeIn{};
};

} // namespace orvanta::pipewire
