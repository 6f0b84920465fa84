#pragma once

// How a stacked device's members are kept in step. Each member declares an extra output
// latency, as a member of an aggregate device does: the combined output plays as if that
// member's sound took that much longer to come out, so every other member is held back to
// meet it. With two members declaring d1 and d2, the first is held back by max(0, d2 - d1) and
// the second by max(0, d1 - d2). A member is fed by a loopback from the combined sink's
// monitor whose latency is a small base plus the time that member is held back.

#include <map>
#include <string>

namespace orvanta::pulse {

// The base latency of every loopback. Null sinks play cleanly from about 7 ms; real devices,
// Bluetooth ones above all, need headroom against underruns, and only the differences between
// members matter for alignment, so a few tens of milliseconds cost nothing audible.
inline constexpr int kLoopbackBaseMs = 30;

// member UID -> declared extra latency in ms
using DeclaredLatencies = std::map<std::string, double>;
// member UID -> loopback latency in whole ms
using LoopbackLatencies = std::map<std::string, int>;
// member UID -> how long it is held back, in ms
using HoldBacks = std::map<std::string, double>;

// Every member waits for the one that declares the most: each is held back by the largest
// declared latency minus its own (a negative declaration counts as none).
HoldBacks holdBacks(const DeclaredLatencies& declared);

LoopbackLatencies loopbackLatencies(const DeclaredLatencies& declared, int baseMs = kLoopbackBaseMs);

// The declared latencies that running loopbacks stand for, for a stacked device left by an
// earlier run: only the differences survive, so the member held back least declares the most.
DeclaredLatencies declaredFromLoopbacks(const LoopbackLatencies& running);

} // namespace orvanta::pulse
