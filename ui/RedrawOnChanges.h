#pragma once

// A view redraws whole whenever the state it shows announces a change, as a declarative view
// would: any published field of AppState but the trust flag, and the language.

#include "i18n/LanguageManager.h"
#include "state/AppState.h"

namespace orvanta::ui {

template <typename View>
void redrawOnChanges(state::AppState& appState, i18n::LanguageManager& lang, View* view, void (View::*redraw)())
{
    for (const auto signal :
         {&state::AppState::devicesChanged, &state::AppState::selectedDevice1Changed,
          &state::AppState::selectedDevice2Changed, &state::AppState::isQuellonOnChanged,
          &state::AppState::volume1Changed, &state::AppState::volume2Changed, &state::AppState::bluetoothDelaysChanged,
          &state::AppState::manualBluetoothOverridesChanged, &state::AppState::launchAtLoginChanged}) {
        QObject::connect(&appState, signal, view, redraw);
    }
    QObject::connect(&lang, &i18n::LanguageManager::currentLanguageChanged, view, redraw);
}

} // namespace orvanta::ui
