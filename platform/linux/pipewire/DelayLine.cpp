#include "DelayLine.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvanta::pipewire {

namespace {

float safe(float sample)
{
    return std::isfinite(sample) ? std::clamp(sample, -1.0f, 1.0f) : 0.0f;
}

} // namespace

DelayLine::DelayLine() : samples(static_cast<std::size_t>(kCapacityFrames) * kChannels, 0.0f) {}

void DelayLine::write(const float* interleaved, std::uint32_t frames)
{
    for (std::uint32_t i = 0; i < frames; ++i) {
        const auto slot = static_cast<std::size_t>((writePosition + i) % kCapacityFrames) * kChannels;
        for (std::uint32_t c = 0; c < kChannels; ++c) {
            samples[slot + c] = safe(interleaved[static_cast<std::size_t>(i) * kChannels + c]);
        }
    }
    writePosition += frames;
}

void DelayLine::writeSilence(std::uint32_t frames)
{
    for (std::uint32_t i = 0; i < frames; ++i) {
        const auto slot = static_cast<std::size_t>((writePosition + i) % kCapacityFrames) * kChannels;
        std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(slot), kChannels, 0.0f);
    }
    writePosition += frames;
}

const float* DelayLine::frameBefore(std::uint64_t position, std::uint32_t holdBack) const
{
    // Older than the ring keeps, or from before the first write: silence.
    if (holdBack >= position || writePosition - (position - holdBack) >= kCapacityFrames) {
        return kSilence.data();
    }
    const auto frame = position - holdBack - 1;
    return samples.data() + static_cast<std::size_t>(frame % kCapacityFrames) * kChannels;
}

DelayTap::DelayTap()
{
    // A raised-cosine ramp: smooth at both ends, and with its mirror image it sums to one.
    for (std::uint32_t i = 0; i < kFadeFrames; ++i) {
        const double t = (static_cast<double>(i) + 0.5) / kFadeFrames;
        fadeIn[i] = static_cast<float>(0.5 - 0.5 * std::cos(std::numbers::pi * t));
    }
}

void DelayTap::setHoldBack(std::uint32_t frames)
{
    target.store(std::min(frames, DelayLine::kMaxHoldBackFrames), std::memory_order_relaxed);
}

void DelayTap::startFadeIfAsked()
{
    const auto wanted = target.load(std::memory_order_relaxed);
    if (!fading && wanted != current) {
        fadeTo = wanted;
        fadeDone = 0;
        fading = true;
    }
}

void DelayTap::render(const DelayLine& line, float* out, std::uint32_t frames)
{
    if (!rendered) {
        // Nothing has been heard yet, so there is nothing to fade from.
        current = target.load(std::memory_order_relaxed);
        rendered = true;
    }
    const std::uint64_t end = line.written();
    const std::uint64_t start = end >= frames ? end - frames : 0;
    for (std::uint32_t i = 0; i < frames; ++i) {
        // A change asked for during a fade waits for it to end, so fades never stack.
        startFadeIfAsked();
        const std::uint64_t position = start + i + 1;
        const float* from = line.frameBefore(position, current);
        float* frame = out + static_cast<std::size_t>(i) * kChannels;
        if (!fading) {
            std::copy_n(from, kChannels, frame);
            continue;
        }
        const float* to = line.frameBefore(position, fadeTo);
        const float gain = fadeIn[fadeDone];
        for (std::uint32_t c = 0; c < kChannels; ++c) {
            frame[c] = safe(from[c] + gain * (to[c] - from[c]));
        }
        if (++fadeDone == kFadeFrames) {
            current = fadeTo;
            fading = false;
        }
    }
}

} // namespace orvanta::pipewire
