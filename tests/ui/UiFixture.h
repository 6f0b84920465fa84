#pragma once

// Views over an AppState on the simulated sound system with simulated services.

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

namespace orvanta::testing {

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
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Home);
    for (int i = 0; i < index; ++i) {
        QTest::keyClick(picker, Qt::Key_Down);
    }
}

struct UiFixture : StateFixture
{
    explicit UiFixture(std::vector<sim::DeviceSpec> devices = speakersAndBluetooth()) : StateFixture(std::move(devices))
    {
        start();
        sim.reset();
    }

    ui::ViewServices services() { return {sim.audio, mediaKeys, trust, alerts, workspace, &bundle}; }

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

} // namespace orvanta::testing
