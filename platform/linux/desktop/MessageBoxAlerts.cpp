#include "MessageBoxAlerts.h"

#include <QAbstractButton>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace orvanta::desktop {

int MessageBoxAlerts::runModal(const services::Alert& alert)
{
    QMessageBox box;
    box.setWindowModality(Qt::ApplicationModal);
    box.setIcon(QMessageBox::Information);
    box.setTextFormat(Qt::PlainText);
    box.setText(alert.messageText);
    box.setInformativeText(alert.informativeText);
    // The informative label does not follow the box's text format on every Qt version.
    if (auto* informative = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
        informative->setTextFormat(Qt::PlainText);
        informative->setOpenExternalLinks(false);
    }

    QList<QAbstractButton*> buttons;
    for (const QString& title : alert.buttons) {
        const auto role = buttons.isEmpty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
        buttons.append(box.addButton(title, role));
    }
    if (!buttons.isEmpty()) {
        box.setDefaultButton(qobject_cast<QPushButton*>(buttons.first()));
        // Escape and the window's close button choose the last one ("Later", "OK").
        box.setEscapeButton(buttons.last());
    }
    box.exec();
    return static_cast<int>(buttons.indexOf(box.clickedButton()));
}

} // namespace orvanta::desktop
