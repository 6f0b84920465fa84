#include "PermissionBanner.h"

#include "Symbols.h"
#include "i18n/LanguageManager.h"
#include "services/AccessibilityTrust.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace orvanta::ui {
namespace {

using Obstacle = services::AccessibilityTrust::Obstacle;

} // namespace

PermissionBanner::PermissionBanner(i18n::LanguageManager& languageManager, services::AccessibilityTrust& keyTrust,
                                   QWidget* parent)
    : QWidget(parent), lang(languageManager), trust(keyTrust)
{
    // Inset by 5 on both sides, within the column's own margins.
    auto* outerLayout = new QHBoxLayout(this);
    outerLayout->setContentsMargins(5, 0, 5, 0);
    auto* panel = new RoundedPanel(Tint::Red, 0.85, 10, this);
    panel->setObjectName(QStringLiteral("permissionBanner"));
    outerLayout->addWidget(panel);

    auto* row = new QHBoxLayout(panel);
    row->setContentsMargins(12, 12, 12, 12);
    row->setSpacing(10);
    auto* shield =
        new SymbolView(QStringLiteral("lock.shield.fill"), Tint::White, symbolSize(TextStyle::Title2, font()), panel);
    row->addWidget(shield, 0, Qt::AlignTop);

    auto* texts = new QVBoxLayout();
    texts->setSpacing(4);
    title = makeTextLabel(TextStyle::Headline, QStringLiteral("bannerTitle"), panel);
    applyTint(title, Tint::White);
    text = makeTextLabel(TextStyle::Caption, QStringLiteral("bannerText"), panel, true);
    QPalette textColors = text->palette();
    textColors.setColor(QPalette::WindowText, QColor(255, 255, 255, 242));
    text->setPalette(textColors);
    settingsButton = new QPushButton(panel);
    settingsButton->setObjectName(QStringLiteral("openSystemSettingsButton"));
    settingsButton->setFont(fontFor(TextStyle::Caption, font()));
    settingsButton->setCursor(Qt::PointingHandCursor);
    settingsButton->setStyleSheet(
        QStringLiteral("QPushButton { background: #ffffff; color: #000000; border: none; border-radius: 5px;"
                       " padding: 3px 10px; }"
                       "QPushButton:hover { background: #f0f0f0; }"
                       "QPushButton:pressed { background: #dcdcdc; }"
                       "QPushButton:focus { border: 2px solid #000000; }"));
    connect(settingsButton, &QPushButton::clicked, this, [this] { trust.promptForTrust(); });
    texts->addWidget(title);
    texts->addWidget(text);
    texts->addSpacing(4);
    texts->addWidget(settingsButton, 0, Qt::AlignLeading);
    row->addLayout(texts, 1);
}

void PermissionBanner::redraw()
{
    const auto tr = [this](const char* key) { return lang.translate(QString::fromUtf8(key)); };
    title->setText(tr("Permission Required"));
    // The button shows only where it leads somewhere; the steps that name it go with it.
    const bool offerButton = trust.canPromptForTrust();
    switch (trust.obstacle()) {
    case Obstacle::None:
    case Obstacle::KeysHeldByAnotherProgram:
        text->setText(offerButton ? tr("keys_taken_reason") + u'\n' + tr("keys_taken_text") : tr("keys_taken_reason"));
        break;
    case Obstacle::SessionGivesNoKeys:
        text->setText(tr("keys_wayland_text"));
        break;
    case Obstacle::DesktopKeysUnknown:
        text->setText(tr("keys_unhandled_text"));
        break;
    }
    settingsButton->setText(tr("Open System Settings"));
    settingsButton->setVisible(offerButton);
    setAccessibleName(title->text());
    setAccessibleDescription(text->text());
}

} // namespace orvanta::ui
