// The lower part of the main window's column: the notes, the support button, the two links and
// the version.

#include "ContentView.h"

#include "FooterButtons.h"
#include "Symbols.h"
#include "Widgets.h"
#include "services/BundleInfo.h"
#include "update/SiteAddresses.h"

#include <QBoxLayout>
#include <QLabel>

namespace orvanta::ui {

QWidget* ContentView::buildNotes()
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

QWidget* ContentView::buildFooter()
{
    auto* footer = new QWidget(this);
    auto* column = new QVBoxLayout(footer);
    column->setContentsMargins(0, 5, 0, 0);
    column->setSpacing(0);

    supportButton = new SupportButton(footer);
    supportButton->setObjectName(QStringLiteral("supportButton"));
    connect(supportButton, &QPushButton::clicked, this, [this] { openAddress(update::donationAddress()); });
    column->addWidget(supportButton);
    column->addSpacing(20 + 2);

    auto* links = new QHBoxLayout();
    links->setSpacing(10);
    privacyLink = new LinkButton(footer);
    privacyLink->setObjectName(QStringLiteral("privacyLink"));
    connect(privacyLink, &QPushButton::clicked, this, [this] { openAddress(update::privacyPolicyAddress()); });
    auto* dot = makeTextLabel(TextStyle::Small, QStringLiteral("linkSeparator"), footer);
    dot->setText(QStringLiteral("•"));
    applyTint(dot, Tint::Secondary);
    termsLink = new LinkButton(footer);
    termsLink->setObjectName(QStringLiteral("termsLink"));
    connect(termsLink, &QPushButton::clicked, this, [this] { openAddress(update::termsOfUseAddress()); });
    links->addStretch(1);
    links->addWidget(privacyLink);
    links->addWidget(dot);
    links->addWidget(termsLink);
    links->addStretch(1);
    column->addLayout(links);

    versionLabel = makeTextLabel(TextStyle::Tiny, QStringLiteral("versionLabel"), footer);
    alignByLayout(versionLabel, Qt::AlignCenter);
    applyTint(versionLabel, Tint::Secondary);
    const std::optional<QString> version =
        services.bundle != nullptr ? services.bundle->shortVersionString() : std::nullopt;
    versionLabel->setText(version ? QStringLiteral("v") + *version : QString());
    versionLabel->setVisible(version.has_value());
    column->addSpacing(20 + 2);
    column->addWidget(versionLabel);
    return footer;
}

} // namespace orvanta::ui
