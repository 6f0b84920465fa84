#pragma once

// Application-modal alerts: a message, an informative text under it and one or more buttons.

#include <QString>
#include <QStringList>

namespace orvanta::services {

struct Alert
{
    QString messageText;
    QString informativeText;
    QStringList buttons; // in order; the first is the affirmative, default one

    friend bool operator==(const Alert&, const Alert&) = default;
};

class Alerts
{
public:
    virtual ~Alerts() = default;

    // Shows alert over the whole application and waits for the user. Gives the index of the
    // chosen button in alert.buttons, or -1 when the alert was closed without one.
    virtual int runModal(const Alert& alert) = 0;

protected:
    Alerts() = default;
    Alerts(const Alerts&) = default;
    Alerts& operator=(const Alerts&) = default;
};

} // namespace orvanta::services
