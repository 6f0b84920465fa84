#pragma once

// The lower part of the main window's column: the notes, the support button, the two links to
// the web site and the build's version.

#include <QWidget>

class QLabel;
class QPushButton;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::services {
class BundleInfo;
class Workspace;
} // namespace orvanta::services

namespace orvanta::ui {

class ContentFooter : public QWidget
{
    Q_OBJECT

public:
    // Without bundle there is no version line.
    ContentFooter(i18n::LanguageManager& lang, services::Workspace& workspace, services::BundleInfo* bundle,
                  QWidget* parent = nullptr);

    void redraw();

private:
    QWidget* buildNotes();
    void openAddress(const QString& address);

    i18n::LanguageManager& lang;
    services::Workspace& workspace;
    QLabel* notesTitle = nullptr;
    QLabel* warningText = nullptr;
    QLabel* keepRunningText = nullptr;
    QLabel* volumeKeysText = nullptr;
    QPushButton* supportButton = nullptr;
    QPushButton* privacyLink = nullptr;
    QPushButton* termsLink = nullptr;
};

} // namespace orvanta::ui
