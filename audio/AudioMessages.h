#pragma once

// The diagnostic lines of the audio layer, byte for byte. Several pictograms carry the
// emoji variation selector U+FE0F; keep these texts in one place so no copy loses it.

#include <string_view>

namespace orvanta::audio::messages {

inline constexpr std::string_view kCleanupLine = "🗑️ Startup Cleanup: Old device destroyed.";
inline constexpr std::string_view kReturningAudioPrefix = "Returning audio to: ";
inline constexpr std::string_view kCreateErrorPrefix = "❌ Create Error: ";
inline constexpr std::string_view kCreatedPrefix = "✅ Sync Device Created! ID: ";
inline constexpr std::string_view kRuntimeLatencyPrefix = "⏱️ Real-time latency set on ";
inline constexpr std::string_view kRuntimeLatencyFailedPrefix = "ℹ️ Runtime latency set failed (";
inline constexpr std::string_view kRuntimeLatencyFailedSuffix = "); will apply on next sync toggle.";
inline constexpr std::string_view kVirtualMainVolumePrefix = "✅ Volume set via VirtualMainVolume for ";
inline constexpr std::string_view kVolumeScalarPrefix = "✅ Volume set via VolumeScalar for ";
inline constexpr std::string_view kMasterVolumePrefix = "✅ Volume set via Master Volume for ";
inline constexpr std::string_view kNoHardwareVolumePrefix = "⚠️ Device ";
inline constexpr std::string_view kNoHardwareVolumeMiddle =
    " does not support hardware volume. Using software volume: ";
inline constexpr std::string_view kSoftwareVolumeStoredPrefix = "📊 Software volume stored for ";
inline constexpr std::string_view kSoftwareVolumeNote =
    "💡 Note: Device may not support volume control. Consider using SoundSource or similar apps.";

} // namespace orvanta::audio::messages
