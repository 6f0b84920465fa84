// The main window tells the user, in their language, while changed settings cannot be saved.

#include "UiFixture.h"

#include "ui/ContentView.h"
#include "ui/SettingsSaveNotice.h"

#include <QSignalSpy>

namespace orvanta::testing {
namespace {

class SettingsSaveNotice : public ::testing::Test, public UiFixture
{
protected:
    ui::ContentView& view()
    {
        if (!content) {
            content = std::make_unique<ui::ContentView>(lang, *appState, services());
        }
        return *content;
    }

    QLabel* noticeText() { return child<QLabel>(&view(), "settingsSaveNoticeText"); }
    bool noticeShown() { return shown(child<QWidget>(&view(), "settingsSaveNotice")); }

    std::unique_ptr<ui::ContentView> content;
};

TEST_F(SettingsSaveNotice, AppearsWhileWritesFailAndGoesWhenOneSucceeds)
{
    EXPECT_FALSE(noticeShown());
    QSignalSpy announcements(appState.get(), &state::AppState::settingsSavedChanged);

    memoryDefaults.failWrites = true;
    appState->setBluetoothDelay(120, device("bt"));
    EXPECT_FALSE(appState->settingsSaved());
    EXPECT_TRUE(noticeShown());
    EXPECT_EQ(noticeText()->text(), "Changes are not being saved: the settings file cannot be written.");

    memoryDefaults.failWrites = false;
    appState->setManualBluetoothOverride(true, device("spk"));
    EXPECT_TRUE(appState->settingsSaved());
    EXPECT_FALSE(noticeShown());
    EXPECT_EQ(announcements.size(), 2);
}

TEST_F(SettingsSaveNotice, AFailedLanguageChangeShowsTheNoticeInTheNewLanguage)
{
    view();
    memoryDefaults.failWrites = true;
    lang.setCurrentLanguage(QStringLiteral("Deutsch"));
    EXPECT_FALSE(appState->settingsSaved());
    EXPECT_TRUE(noticeShown());
    EXPECT_EQ(noticeText()->text(),
              "Änderungen werden nicht gespeichert: Die Einstellungsdatei kann nicht geschrieben werden.");
}

} // namespace
} // namespace orvanta::testing
