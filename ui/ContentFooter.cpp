#include "ContentFooter.h"

#include "Symbols.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "services/BundleInfo.h"
#include "services/Workspace.h"
#include "update/SiteAddresses.h"

#include <QBoxLayout>
#include <QUrl>

namespace orvanta::ui {

ContentFooter::ContentFooter(i18n::LanguageManager& languageManager, services::Workspace& desktop,
                             services::BundleInfo* bundle, QWidget* parent)
    : QWidget(parent), lang(languageManager), workspace(desktop)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(20);
    column->addWidget(buildNotes());

    auto* footer = new QVBoxLayout();
    footer->setContentsMargins(0, 5, 0, 0);
    footer->setSpacing(0);
    supportButton = new SupportButton(this);
    supportButton->setObjectName(QStringLiteral("supportButton"));
    connect(supportButton, &QPushButton::clicked, this, [this] { openAddress(update::donationAddress()); });
    footer->addWidget(supportButton);
    footer->addSpacing(20 + 2);

    auto* links = new QHBoxLayout();
    links->setSpacing(10);
    privacyLink = new LinkButton(this);
    privacyLink->setObjectName(QStringLiteral("privacyLink"));
    connect(privacyLink, &QPushButton::clicked, this, [this] { openAddress(update::privacyPolicyAddress()); });
    auto* dot = makeTextLabel(TextStyle::Small, QStringLiteral("linkSeparator"), this);
    dot->setText(QStringLiteral("•"));
    applyTint(dot, Tint::Secondary);
    termsLink = new LinkButton(this);
    termsLink->setObjectName(QStringLiteral("termsLink"));
    connect(termsLink, &QPushButton::clicked, this, [this] { openAddress(update::termsOfUseAddress()); });
    links->addStretch(1);
    links->addWidget(privacyLink);
    links->addWidget(dot);
    links->addWidget(termsLink);
    links->addStretch(1);
    footer->addLayout(links);

    auto* versionLabel = makeTextLabel(TextStyle::Tiny, QStringLiteral("versionLabel"), this);
    alignByLayout(versionLabel, Qt::AlignCenter);
    applyTint(versionLabel, Tint::Secondary);
    const std::optional<QString> version = bundle != nullptr ? bundle->shortVersionString() : std::nullopt;
    versionLabel->setText(version ? QStringLiteral("v") + *version : QString());
    versionLabel->setVisible(version.has_value());
    footer->addSpacing(20 + 2);
    footer->addWidget(versionLabel);
    column->addLayout(footer);
}

QWidget* ContentFooter::buildNotes()
{
    auto* notes = new QWidget(this);
    notes->setObjectName(QStringLiteral("notes"));
    auto* column = new QVBoxLayout(notes);
    column->setContentsMargins(0, 5, 0, 0);
    column->setSpacing(6);
    notesTitle = makeTextLabel(TextStyle::Caption, QStringLiteral("notesTitle"), notes);
    QFont boldCaption = notesTitle->font();
    boldCaption.setBold(true);
    notesTitle->setFont(boldCaption);
    applyTint(notesTitle, Tint::Gray);

    auto* warningRow = new QHBoxLayout();
    warningRow->setSpacing(6);
    auto* triangle = new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), Tint::Yellow,
                                    symbolSize(TextStyle::Caption, font()), notes);
    warningText = makeTextLabel(TextStyle::Caption2, QStringLiteral("warningText"), notes, true);
    warningRow->addWidget(triangle, 0, Qt::AlignTop);
    warningRow->addWidget(warningText, 1);

    keepRunningText = makeTextLabel(TextStyle::Caption2, QStringLiteral("keepRunningText"), notes, true);
    applyTint(keepRunningText, Tint::Gray);
    volumeKeysText = makeTextLabel(TextStyle::Caption2, QStringLiteral("volumeKeysText"), notes, true);
    applyTint(volumeKeysText, Tint::Gray);

    column->addWidget(notesTitle);
    column->addLayout(warningRow);
    column->addWidget(keepRunningText);
    column->addWidget(volumeKeysText);
    return notes;
}

void ContentFooter::redraw()
{
    const auto tr = [this](const char* key) { return lang.translate(QString::fromUtf8(key)); };
    notesTitle->setText(tr("NOTES:"));
    warningText->setText(tr("WARNING: Sound plays through SELECTED speakers even if headphones are plugged in."));
    keepRunningText->setText(tr("• Keep app running to use volume keys."));
    volumeKeysText->setText(tr("• Volume keys adjust all speakers together."));
    supportButton->setText(tr("Support the Developer"));
    supportButton->updateGeometry();
    privacyLink->setText(tr("Privacy Policy"));
    privacyLink->updateGeometry();
    termsLink->setText(tr("Terms of Use"));
    termsLink->updateGeometry();
}

void ContentFooter::openAddress(const QString& address)
{
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty()) {
        return;
    }
    workspace.openUrl(url);
}

} // namespace orvanta::ui
