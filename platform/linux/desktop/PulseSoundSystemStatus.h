#pragma once

// The sound-system status of a connection to the sound server, followed live. The connection
// reports from its own thread; the status takes each report over to the main thread and
// announces it there. A server that does not answer makes the connection try again every
// second: those tries keep the status at "not answering" rather than flicker to "connecting".
// The connection must outlive this object.

#include "pulse/PulseConnection.h"
#include "services/SoundSystemStatus.h"

namespace orvanta::desktop {

class PulseSoundSystemStatus final : public services::SoundSystemStatus
{
public:
    PulseSoundSystemStatus(pulse::PulseConnection& connection, QString serverName, QObject* parent = nullptr);
    ~PulseSoundSystemStatus() override;

    State state() const override { return current; }
    QString serverName() const override { return name; }

    // The status after the connection enters reported, coming from shown.
    static State follow(State shown, pulse::PulseConnection::State reported);

private:
    void apply(pulse::PulseConnection::State reported);

    pulse::PulseConnection& connection;
    State current = State::Connecting;
    QString name;
};

} // namespace orvanta::desktop
