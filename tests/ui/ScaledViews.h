#pragma once

// Views over two Bluetooth speakers at a text scale: the application font is scaled for the
// life of the fixture, and both speakers can be synced, so that every row the views have is
// shown (both delay rows, the delay note).

#include "UiFixture.h"

#include <QApplication>
#include <QFont>

namespace orvanta::testing {

inline std::vector<sim::DeviceSpec> twoBluetoothSpeakers()
{
    auto devices = speakersAndBluetooth();
    auto second = outputDevice("Bahasa Indonesia Soundbar", "bt2", hal::kAudioDeviceTransportTypeBluetooth, 44100);
    second.channelVolumes = {volumeControl(), volumeControl()};
    devices.push_back(second);
    return devices;
}

// The application font at a scale, for the life of the object.
class TextScale
{
public:
    explicit TextScale(double scale) : saved(QApplication::font())
    {
        QFont scaled = saved;
        scaled.setPointSizeF(saved.pointSizeF() * scale);
        QApplication::setFont(scaled);
    }
    ~TextScale() { QApplication::setFont(saved); }
    TextScale(const TextScale&) = delete;
    TextScale& operator=(const TextScale&) = delete;

private:
    QFont saved;
};

class ScaledViews : public ::testing::TestWithParam<double>, public UiFixture
{
protected:
    ScaledViews() : UiFixture(twoBluetoothSpeakers()), scale(GetParam()) {}

    // Both Bluetooth speakers synced, the primary at full volume, delays of three digits.
    void syncTwoBluetoothSpeakers()
    {
        appState->setSelectedDevice1(device("bt"));
        appState->setSelectedDevice2(device("bt2"));
        appState->setVolume1(1.0f);
        appState->setBluetoothDelay(595, device("bt"));
        appState->setBluetoothDelay(600, device("bt2"));
        appState->enableSync();
        ASSERT_TRUE(appState->isQuellonOn());
    }

    double scale;
    TextScale text{GetParam()};
};

} // namespace orvanta::testing
