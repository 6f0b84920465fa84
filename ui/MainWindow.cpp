#include "MainWindow.h"

#include "ContentView.h"
#include "MainWindowLookup.h"
#include "services/UserDefaults.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QTimer>
#include <QVariantMap>

#include <algorithm>

namespace orvanta::ui {
namespace {

// Below this the window shows too little to be of use; a smaller screen scrolls the rest.
constexpr int kSmallestHeight = 240;

} // namespace

MainWindow::MainWindow(i18n::LanguageManager& lang, state::AppState& appState, ViewServices services, QWidget* parent)
    : QMainWindow(parent), settings(services.userDefaults)
{
    setObjectName(kMainWindowName);
    // A fixed title, the same in every interface language.
    setWindowTitle(kMainWindowTitle);
    setAttribute(Qt::WA_DeleteOnClose);
    scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("contentScroll"));
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    scroll->setWidgetResizable(false);
    view = new ContentView(lang, appState, std::move(services));
    scroll->setWidget(view);
    setCentralWidget(scroll);
    // The column's own layout says when its height changes; the window follows.
    view->installEventFilter(this);
    restorePosition();
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &MainWindow::storePosition);
    fitToScreen();
}

MainWindow::~MainWindow() = default;

int MainWindow::decorationHeight() const
{
    // Known once the window manager has framed the window; until then, a title bar's worth.
    const int framed = frameGeometry().height() - geometry().height();
    return framed > 0 || isVisible() ? framed : style()->pixelMetric(QStyle::PM_TitleBarHeight);
}

void MainWindow::fitInto(const QRect& available)
{
    view->resize(ContentView::kWidth, view->heightForWidth(ContentView::kWidth));
    const int menu = menuBar()->isVisibleTo(this) ? menuBar()->sizeHint().height() : 0;
    const int wanted = menu + view->height();
    const int room = std::max(kSmallestHeight, available.height() - decorationHeight());
    const bool scrolls = wanted > room;
    const int width = ContentView::kWidth + (scrolls ? scroll->verticalScrollBar()->sizeHint().width() : 0);

    setFixedWidth(width);
    setMinimumHeight(std::min(wanted, kSmallestHeight));
    setMaximumHeight(wanted);
    resize(width, std::min(wanted, room));

    // A window that grew past the bottom of the available area moves up into it.
    const QRect frame = frameGeometry();
    const int bottomOverhang = frame.top() + decorationHeight() + height() - (available.bottom() + 1);
    if (isVisible() && bottomOverhang > 0) {
        move(pos().x(), std::max(available.top(), pos().y() - bottomOverhang));
    }
}

void MainWindow::fitToScreen()
{
    fitPending = false;
    const QScreen* shownOn = screen() != nullptr ? screen() : QGuiApplication::primaryScreen();
    if (shownOn != nullptr) {
        fitInto(shownOn->availableGeometry());
    }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == view && event->type() == QEvent::LayoutRequest && !fitPending) {
        // After the column has laid itself out anew.
        fitPending = true;
        QTimer::singleShot(0, this, &MainWindow::fitToScreen);
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::restorePosition()
{
    if (settings == nullptr) {
        return;
    }
    const QVariantMap stored = settings->value(QString::fromLatin1(kPositionKey)).toMap();
    if (!stored.contains(QStringLiteral("x")) || !stored.contains(QStringLiteral("y"))) {
        return;
    }
    const QPoint position(stored.value(QStringLiteral("x")).toInt(), stored.value(QStringLiteral("y")).toInt());
    // Only a place on a screen that is still there: a window is never put out of reach.
    for (const QScreen* candidate : QGuiApplication::screens()) {
        if (candidate->availableGeometry().contains(position)) {
            move(position);
            return;
        }
    }
}

void MainWindow::storePosition()
{
    if (settings == nullptr || !isVisible()) {
        return;
    }
    const QPoint position = pos();
    const QVariantMap stored{{QStringLiteral("x"), position.x()}, {QStringLiteral("y"), position.y()}};
    if (settings->value(QString::fromLatin1(kPositionKey)).toMap() != stored) {
        settings->setValue(QString::fromLatin1(kPositionKey), stored);
    }
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    storePosition();
    QMainWindow::closeEvent(event);
    if (event->isAccepted()) {
        markClosed(this);
        emit closed();
    }
}

} // namespace orvanta::ui
