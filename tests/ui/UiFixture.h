#pragma once

// Views over an AppState on the simulated sound system, with simulated dialogs, browser and
// build information, and a language manager of their own; the main window's content built on
// first use; and the same at a larger text size over two Bluetooth speakers.

#include "support/EventLoop.h"
#include "support/StateFixture.h"

#include "i18n/LanguageManager.h"
#include "sim/SimulatedAlerts.h"
#include "sim/SimulatedBundleInfo.h"
#include "sim/SimulatedSoundSystemStatus.h"
#include "sim/SimulatedWorkspace.h"
#include "ui/ContentView.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"
#include "ui/ViewServices.h"
#include "ui/Widgets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QSlider>
#include <QTest>
#include <QWidget>

#include <memory>
#include <string>

namespace orvanta::testing {

inline sim::DeviceSpec withHardwareVolume(sim::DeviceSpec device)
{
    device.virtualMainVolume = volumeControl();
    return device;
}

inline std::vector<sim::DeviceSpec> twoBluetoothSpeakers()
{
    auto devices = speakersAndBluetooth();
    auto second = outputDevice("Bahasa Indonesia Soundbar", "bt2", hal::kAudioDeviceTransportTypeBluetooth, 44100);
    second.channelVolumes = {volumeControl(), volumeControl()};
    devices.push_back(second);
    return devices;
}

// The child of root with that object name and type; fails the test when there is none.
template <typename T> T* child(const QObject* root, const char* name)
{
    T* found = root->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(found, nullptr) << "no " << name;
    return found;
}

// Whether the widget would be on screen were its window shown.
inline bool shown(const QWidget* widget)
{
    return widget != nullptr && widget->isVisibleTo(widget->window());
}

inline void click(QWidget* widget)
{
    ASSERT_NE(widget, nullptr);
    ASSERT_TRUE(shown(widget)) << widget->objectName().toStdString() << " is hidden";
    // A check box reacts to its box and its text, not to the empty rest of its row.
    const bool checkBox = widget->inherits("QCheckBox");
    const int leading = widget->layoutDirection() == Qt::LeftToRight ? 8 : widget->width() - 8;
    QTest::mouseClick(widget, Qt::LeftButton, {},
                      checkBox ? QPoint(leading, widget->height() / 2) : widget->rect().center());
}

// Drags a slider's knob the way a pointer does: down, to each position, up.
inline void dragSlider(QSlider* slider, std::initializer_list<int> positions)
{
    slider->setSliderDown(true);
    for (int position : positions) {
        slider->setSliderPosition(position);
    }
    slider->setSliderDown(false);
}

// Picks entry index of a picker the way the keyboard does.
inline void pick(QComboBox* picker, int index)
{
    ASSERT_NE(picker, nullptr);
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Home);
    for (int i = 0; i < index; ++i) {
        QTest::keyClick(picker, Qt::Key_Down);
    }
    ASSERT_EQ(picker->currentIndex(), index);
}

struct UiFixture : StateFixture
{
    explicit UiFixture(std::vector<sim::DeviceSpec> devices = speakersAndBluetooth()) : StateFixture(std::move(devices))
    {
        start();
        sim.reset();
    }

    ui::ViewServices services() { return {sim.audio, mediaKeys, trust, alerts, workspace, &bundle}; }

    state::OptionalDevice device(const std::string& uid) const
    {
        for (const auto& listed : appState->devices()) {
            if (listed.uid == uid) {
                return listed;
            }
        }
        return std::nullopt;
    }

    int volumeLines() const
    {
        return static_cast<int>(std::count_if(sim.printed.lines.begin(), sim.printed.lines.end(),
                                              [](const auto& line) { return line.rfind("✅ Volume set via", 0) == 0; }));
    }

    // The main window's content, made on first use.
    ui::ContentView& view()
    {
        if (!content) {
            content = std::make_unique<ui::ContentView>(lang, *appState, services());
        }
        return *content;
    }
    QWidget* block(const char* name) { return child<QWidget>(&view(), name); }
    void pickBoth(int primary, int secondary)
    {
        pick(child<QComboBox>(&view(), "primaryPicker"), primary);
        pick(child<QComboBox>(&view(), "secondaryPicker"), secondary);
    }
    void turnSyncOn()
    {
        click(child<QAbstractButton>(&view(), "syncSwitch"));
        drainEvents();
    }

    sim::SimulatedAlerts alerts;
    sim::SimulatedWorkspace workspace;
    sim::SimulatedBundleInfo bundle{QStringLiteral("1.0.0")};
    i18n::LanguageManager lang{memoryDefaults};
    std::unique_ptr<ui::ContentView> content;
};

class MainWindowContent : public ::testing::Test, public UiFixture
{};

// Views over two Bluetooth speakers with the application font at a scale, so that every row the
// views have is shown.
class ScaledViews : public ::testing::TestWithParam<double>, public UiFixture
{
protected:
    ScaledViews() : UiFixture(twoBluetoothSpeakers())
    {
        QFont scaled = savedFont;
        scaled.setPointSizeF(savedFont.pointSizeF() * GetParam());
        QApplication::setFont(scaled);
    }
    ~ScaledViews() override { QApplication::setFont(savedFont); }

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

    const QFont savedFont = QApplication::font();
};

} // namespace orvanta::testing
