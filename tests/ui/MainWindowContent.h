#pragma once

// The main window's content over the simulated sound system, built on first use, with the
// pickers worked the way the keyboard works them.

#include "UiFixture.h"

#include "ui/ContentView.h"

#include <QComboBox>

#include <memory>

namespace orvanta::testing {

class MainWindowContent : public ::testing::Test, public UiFixture
{
protected:
    explicit MainWindowContent(std::vector<sim::DeviceSpec> devices = speakersAndBluetooth())
        : UiFixture(std::move(devices))
    {}

    ui::ContentView& view()
    {
        if (!content) {
            content = std::make_unique<ui::ContentView>(lang, *appState, services());
        }
        return *content;
    }

    // Picks entry index of a picker the way the keyboard does.
    static void pick(QComboBox* picker, int index)
    {
        ASSERT_NE(picker, nullptr);
        picker->setFocus();
        QTest::keyClick(picker, Qt::Key_Home);
        for (int i = 0; i < index; ++i) {
            QTest::keyClick(picker, Qt::Key_Down);
        }
        ASSERT_EQ(picker->currentIndex(), index);
    }

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

    QWidget* block(const char* name) { return child<QWidget>(&view(), name); }

    std::unique_ptr<ui::ContentView> content;
};

} // namespace orvanta::testing
