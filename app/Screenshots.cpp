// Renders the main window and the tray panel to PNG files, in several languages, over the
// built-in simulated devices, drawn as on a desktop whose sound server answers: sync off with
// both speakers chosen; sync on with a Bluetooth speaker and its delay row; the panel with sync
// on. Each in a light and in a dark palette. The window is sized for the screen it is shown on,
// as the program sizes it (scripts/screenshots shows it on a 1366x768 screen).
//
//   orvanta_screenshots FOLDER [LANGUAGE ...]     (language display names; default: English,
//                                                  العربية and 日本語)

#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"
#include "i18n/LanguageManager.h"
#include "sim/DeviceDescription.h"
#include "sim/MemoryLoginItems.h"
#include "sim/MemoryUserDefaults.h"
#include "sim/SimAccessibilityTrust.h"
#include "sim/SimEventTap.h"
#include "sim/SimulatedAlerts.h"
#include "sim/SimulatedAudioHardware.h"
#include "sim/SimulatedBundleInfo.h"
#include "sim/SimulatedSoundSystemStatus.h"
#include "sim/SimulatedWorkspace.h"
#include "state/AppState.h"
#include "state/MediaKeyManager.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"

#include <QApplication>
#include <QDir>
#include <QMenuBar>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

#include <cstdio>

namespace {

using namespace orvanta;

QPalette darkPalette()
{
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(0x2b, 0x2b, 0x2e));
    dark.setColor(QPalette::WindowText, QColor(0xee, 0xee, 0xee));
    dark.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x20));
    dark.setColor(QPalette::AlternateBase, QColor(0x33, 0x33, 0x36));
    dark.setColor(QPalette::Text, QColor(0xee, 0xee, 0xee));
    dark.setColor(QPalette::Button, QColor(0x3a, 0x3a, 0x3d));
    dark.setColor(QPalette::Light, QColor(0x55, 0x55, 0x58));
    dark.setColor(QPalette::Midlight, QColor(0x45, 0x45, 0x48));
    dark.setColor(QPalette::Mid, QColor(0x44, 0x44, 0x47));
    dark.setColor(QPalette::Dark, QColor(0x1a, 0x1a, 0x1c));
    dark.setColor(QPalette::Shadow, QColor(0x10, 0x10, 0x10));
    dark.setColor(QPalette::ButtonText, QColor(0xee, 0xee, 0xee));
    dark.setColor(QPalette::Highlight, QColor(0x0a, 0x84, 0xff));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Link, QColor(0x4d, 0xa3, 0xff));
    dark.setColor(QPalette::PlaceholderText, QColor(0x99, 0x99, 0x9c));
    dark.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x3a, 0x3d));
    dark.setColor(QPalette::ToolTipText, QColor(0xee, 0xee, 0xee));
    dark.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x77, 0x77, 0x7a));
    dark.setColor(QPalette::Disabled, QPalette::Text, QColor(0x77, 0x77, 0x7a));
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x77, 0x77, 0x7a));
    return dark;
}

QString tableName(const QString& language)
{
    static const QHash<QString, QString> names{
        {QStringLiteral("English"), QStringLiteral("en")},       {QStringLiteral("Español"), QStringLiteral("es")},
        {QStringLiteral("Français"), QStringLiteral("fr")},      {QStringLiteral("Deutsch"), QStringLiteral("de")},
        {QStringLiteral("日本語"), QStringLiteral("ja")},        {QStringLiteral("العربية"), QStringLiteral("ar")},
        {QStringLiteral("עברית"), QStringLiteral("he")},         {QStringLiteral("Italiano"), QStringLiteral("it")},
        {QStringLiteral("Polski"), QStringLiteral("pl")},        {QStringLiteral("Português"), QStringLiteral("pt")},
        {QStringLiteral("Русский"), QStringLiteral("ru")},       {QStringLiteral("Filipino"), QStringLiteral("fil")},
        {QStringLiteral("Bahasa Melayu"), QStringLiteral("ms")},
    };
    return names.value(language, QString::number(qHash(language)));
}

void settle()
{
    for (int i = 0; i < 5; ++i) {
        QApplication::processEvents();
    }
}

bool save(QWidget* widget, const QString& path)
{
    settle();
    const bool saved = widget->grab().save(path);
    std::printf("%s %s\n", saved ? "wrote" : "could not write", qPrintable(path));
    return saved;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.isEmpty()) {
        std::fprintf(stderr, "usage: orvanta_screenshots FOLDER [LANGUAGE ...]\n");
        return 2;
    }
    const QString folder = arguments.first();
    QStringList languages = arguments.mid(1);
    if (languages.isEmpty()) {
        languages = {QStringLiteral("English"), QStringLiteral("العربية"), QStringLiteral("日本語")};
    }
    QDir().mkpath(folder);

    core::CollectedLines printed;
    sim::SimulatedAudioHardware hardware(sim::builtinDeviceDescription());
    audio::AudioWrapper audioLayer(hardware, printed.log());
    sim::MemoryUserDefaults defaults;
    sim::MemoryLoginItems loginItems;
    sim::SimAccessibilityTrust trust;
    trust.trusted = true; // the desktop handles the volume keys: no banner
    sim::SimEventTap taps;
    state::MediaKeyManager mediaKeys(taps, printed.log());
    sim::SimulatedAlerts alerts;
    sim::SimulatedWorkspace workspace;
    sim::SimulatedBundleInfo bundle(QStringLiteral("0.1.0"));
    i18n::LanguageManager lang(defaults);
    state::AppState appState({audioLayer, defaults, loginItems, trust, mediaKeys, printed.log()});
    // Drawn as on a desktop whose sound server answers.
    sim::SimulatedSoundSystemStatus soundStatus(services::SoundSystemStatus::State::Connected);
    const ui::ViewServices services{audioLayer, mediaKeys, trust, alerts, workspace, &bundle, &soundStatus};

    const auto devices = appState.devices();
    const auto byName = [&devices](const std::string& name) {
        for (const auto& device : devices) {
            if (device.name == name) {
                return state::OptionalDevice(device);
            }
        }
        return state::OptionalDevice();
    };

    bool allSaved = true;
    for (const bool dark : {false, true}) {
        QApplication::setPalette(dark ? darkPalette() : QApplication::style()->standardPalette());
        for (const QString& language : languages) {
            lang.setCurrentLanguage(language);
            QApplication::setLayoutDirection(lang.layoutDirection());
            const QString tag = tableName(language) + (dark ? QStringLiteral("-dark") : QString());

            appState.disableSync();
            appState.setSelectedDevice1(byName("Built-in Speakers"));
            appState.setSelectedDevice2(byName("Bluetooth Speaker"));
            appState.setBluetoothDelay(120, byName("Bluetooth Speaker"));

            auto* window = new ui::MainWindow(lang, appState, services);
            window->menuBar()->addMenu(QStringLiteral("Orvanta"));
            window->show();
            allSaved = save(window, QDir(folder).filePath(QStringLiteral("main-sync-off-%1.png").arg(tag))) && allSaved;
            appState.enableSync();
            allSaved = save(window, QDir(folder).filePath(QStringLiteral("main-sync-on-%1.png").arg(tag))) && allSaved;

            auto* panel = new ui::MenuBarView(appState, lang, {}, {});
            panel->show();
            allSaved = save(panel, QDir(folder).filePath(QStringLiteral("panel-%1.png").arg(tag))) && allSaved;
            delete panel;
            delete window;
        }
    }
    return allSaved ? 0 : 1;
}
