#pragma once

// Views over an AppState on the simulated sound system, with simulated dialogs, browser and
// build information, and a language manager of their own.

#include "support/EventLoop.h"
#include "support/StateFixture.h"

#include "i18n/LanguageManager.h"
#include "services/SimulatedAlerts.h"
#include "services/SimulatedBundleInfo.h"
#include "services/SimulatedWorkspace.h"
#include "ui/ViewServices.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QSlider>
#include <QTest>
#include <QWidget>

#include <string>

namespace orvanta::testing {

inline sim::DeviceSpec withHardwareVolume(sim::DeviceSpec device)
{
    device.virtualMainVolume = volumeControl();
    return device;
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
        int count = 0;
        for (const auto& line : sim.printed.lines) {
            if (line.rfind("✅ Volume set via", 0) == 0) {
                ++count;
            }
        }
        return count;
    }

    sim::SimulatedAlerts alerts;
    sim::SimulatedWorkspace workspace;
    sim::SimulatedBundleInfo bundle{QStringLiteral("1.0.0")};
    i18n::LanguageManager lang{memoryDefaults};
};

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

} // namespace orvanta::testing
