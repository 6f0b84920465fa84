#include "PulseSoundSystemStatus.h"

#include <QMetaObject>
#include <QPointer>

namespace orvanta::desktop {

PulseSoundSystemStatus::PulseSoundSystemStatus(pulse::PulseConnection& server, QString serverName, QObject* parent)
    : SoundSystemStatus(parent), connection(server), name(std::move(serverName))
{
    current = follow(State::Connecting, connection.state());
    connection.setStateObserver([this](pulse::PulseConnection::State reported) {
        // Runs on the connection's thread: queued to this object's thread, and dropped with it.
        QMetaObject::invokeMethod(
            this, [this, reported] { apply(reported); }, Qt::QueuedConnection);
    });
}

PulseSoundSystemStatus::~PulseSoundSystemStatus()
{
    // Once this returns, the connection calls nothing of ours any more.
    connection.setStateObserver({});
}

PulseSoundSystemStatus::State PulseSoundSystemStatus::follow(State shown, pulse::PulseConnection::State reported)
{
    switch (reported) {
    case pulse::PulseConnection::State::Ready:
        return State::Connected;
    case pulse::PulseConnection::State::Disconnected:
        return State::NotAnswering;
    case pulse::PulseConnection::State::Connecting:
        // Another try at a server that did not answer the last one is still no answer.
        return shown == State::NotAnswering ? State::NotAnswering : State::Connecting;
    }
    return shown;
}

void PulseSoundSystemStatus::apply(pulse::PulseConnection::State reported)
{
    const State next = follow(current, reported);
    if (next != current) {
        current = next;
        emit stateChanged();
    }
}

} // namespace orvanta::desktop
