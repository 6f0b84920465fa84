// The main window's two device pickers: "Select..." and one entry per listed device (with the
// Bluetooth mark for a device that reports itself as Bluetooth), the selection shown, and the
// user's choice written to AppState.

#include "ContentView.h"

#include "Symbols.h"
#include "i18n/LanguageManager.h"

#include <QComboBox>
#include <QSignalBlocker>

#include <algorithm>

namespace orvanta::ui {

void ContentView::redrawPickers()
{
    // The entries are rebuilt only when the list or the language changed, so that a redraw while
    // a picker is open leaves it alone.
    if (pickerDevices != appState.devices() || pickerLanguage != lang.currentLanguage() ||
        primaryPicker->count() == 0) {
        pickerDevices = appState.devices();
        pickerLanguage = lang.currentLanguage();
        fillPicker(primaryPicker);
        fillPicker(secondaryPicker);
    }
    showSelection(primaryPicker, appState.selectedDevice1());
    showSelection(secondaryPicker, appState.selectedDevice2());
}

void ContentView::fillPicker(QComboBox* picker)
{
    const QSignalBlocker quiet(picker);
    picker->clear();
    picker->addItem(lang.translate(QStringLiteral("Select...")));
    const QIcon bluetooth = symbolIcon(QStringLiteral("wave.3.right.circle.fill"), Tint::Blue);
    for (const auto& device : pickerDevices) {
        // Only the device's own report counts here, not the user's mark.
        if (device.isBluetooth) {
            picker->addItem(bluetooth, QString::fromStdString(device.name));
        } else {
            picker->addItem(QString::fromStdString(device.name));
        }
    }
}

void ContentView::showSelection(QComboBox* picker, const state::OptionalDevice& selected)
{
    int index = 0;
    if (selected) {
        // A selected device that is no longer listed matches no entry; the selection stays.
        const auto found = std::find(pickerDevices.begin(), pickerDevices.end(), *selected);
        index = found == pickerDevices.end() ? -1 : static_cast<int>(found - pickerDevices.begin()) + 1;
    }
    const QSignalBlocker quiet(picker);
    picker->setCurrentIndex(index);
}

void ContentView::choose(QComboBox* picker, int index)
{
    state::OptionalDevice chosen;
    if (index > 0 && static_cast<std::size_t>(index) <= pickerDevices.size()) {
        chosen = pickerDevices[static_cast<std::size_t>(index - 1)];
    }
    if (picker == primaryPicker) {
        appState.setSelectedDevice1(std::move(chosen));
    } else {
        appState.setSelectedDevice2(std::move(chosen));
    }
}

} // namespace orvanta::ui
