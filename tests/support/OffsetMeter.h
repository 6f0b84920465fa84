#pragma once

// A meter for what the user hears from a stacked device, on a private sound server. The members
// are remaps of one 6-channel null sink ("hw"): "mA" plays on its front pair, "mB" on its rear
// pair, and a plain sink "ref" outside the stacked device on the centre pair. Recording hw's
// monitor in one stream times all three by the same clock, to the frame.

#include "support/SoundServer.h"

#include <QProcess>
#include <QTemporaryFile>

#include <functional>
#include <optional>
#include <vector>

namespace orvanta::testing {

inline constexpr int kMeterRate = 48000;
inline constexpr int kMeterChannels = 6;
// The first channel of each pair in a recording.
inline constexpr int kMemberA = 0;
inline constexpr int kMemberB = 2;
inline constexpr int kReference = 4;

// Interleaved float samples: stereo for a track, kMeterChannels for a recording.
using Samples = std::vector<float>;

// Loads hw, mA, mB and ref.
bool loadMeterRig(const SoundServer& server);

// Silence with a short click at each of the given times (in seconds).
Samples clickTrack(double seconds, const std::vector<double>& clickTimes);
// A 440 Hz tone at half scale, faded in and out over 10 ms so that its ends are no clicks.
Samples toneTrack(double seconds);

// Records a source, hw's monitor unless told otherwise, from construction until stop().
class Recorder
{
public:
    explicit Recorder(const SoundServer& server, const QString& source = "hw.monitor", int channels = kMeterChannels);
    bool started() const { return running; }
    // Keeps recording for tailMs more, then gives everything recorded.
    Samples stop(int tailMs);

private:
    QTemporaryFile file;
    QProcess process;
    int channelCount;
    bool running = false;
};

// Plays a track into a sink, in the background, as a player process would.
class Player
{
public:
    Player(const SoundServer& server, const Samples& track, const QString& sink = "com.quellon.stacked");
    bool started() const { return running; }
    bool waitUntilDone();

private:
    QTemporaryFile file;
    QProcess process;
    bool running = false;
};

// The first frame of every click on a recording's channel: louder than a quarter of full scale,
// after at least quietFrames of quiet.
std::vector<long> clickOnsets(const Samples& recording, int channel, int channels = kMeterChannels,
                              long quietFrames = kMeterRate / 10);

// How a steady tone came through on a channel, from its first sound to its last.
struct ToneCheck
{
    double longestGapMs = 0;       // the longest run of near-silence
    double largestStep = 0;        // the largest change between two samples
    double toneStep = 0;           // the largest such change in the undisturbed tone
    bool finiteWithinScale = true; // every sample finite and within [-1, 1]
    double level = 0;              // the RMS over half a second, once settled (full scale 1)
};
std::optional<ToneCheck> checkTone(const Samples& recording, int channel);

// Plays a click into the stacked device: the time mA plays it minus the time mB does, in ms.
std::optional<double> measureOffsetMs(const SoundServer& server);

// Plays a tone into the stacked device while changes (to mA's hold-back only) run. mB hears the
// player unchanged, so it tells whether the loaded machine itself stumbled: such a run is played
// again, up to three times. Gives how mA's tone came through in an undisturbed run, or nothing.
std::optional<ToneCheck> changedMemberTone(const SoundServer& server, double seconds,
                                           const std::function<void()>& changes);

// The longest stretch, in ms, in which mA fell silent when change ran a second into a tone.
std::optional<double> longestSilenceMs(const SoundServer& server, const std::function<void()>& change);

// How loud mA and mB play a steady tone (the RMS of their left channels).
struct MemberLevels
{
    double primary = 0.0;
    double secondary = 0.0;
};
std::optional<MemberLevels> measureMemberLevels(const SoundServer& server);

} // namespace orvanta::testing
