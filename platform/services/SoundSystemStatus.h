#pragma once

// How the program stands with the sound system: connected to the sound server, connecting to
// it, waiting for a server that does not answer, or running on the simulated sound system,
// whose devices are not real. Announces every change on the main thread.

#include <QObject>

namespace orvanta::services {

class SoundSystemStatus : public QObject
{
    Q_OBJECT

public:
    enum class State
    {
        Connected,
        Connecting,
        NotAnswering,
        Simulated,
    };
    Q_ENUM(State)

    ~SoundSystemStatus() override = default;

    virtual State state() const = 0;
    // The sound server's product name ("PipeWire", "PulseAudio"), or empty when not known.
    virtual QString serverName() const { return {}; }

signals:
    void stateChanged();

protected:
    explicit SoundSystemStatus(QObject* parent = nullptr) : QObject(parent) {}
};

} // namespace orvanta::services
