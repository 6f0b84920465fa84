#pragma once

// The symbols the views show ("speaker.wave.2.fill", "lock.shield.fill", ...) are the
// program's own SVG files, single-coloured where "currentColor" stands in them, so that one
// file serves every tint in light and dark themes. The program's icon is an SVG too.

#include "Theme.h"

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QWidget>

namespace orvanta::ui {

// The names of all symbols the program carries, sorted.
QStringList symbolNames();
bool hasSymbol(const QString& name);

// The symbol drawn in color, size by size device pixels; an empty pixmap for an unknown name.
QPixmap symbolPixmap(const QString& name, const QColor& color, int size, qreal devicePixelRatio = 1.0);

// An icon that draws the symbol at any size, in the tint taken from the application's palette
// when it is drawn (disabled icons are dimmed).
QIcon symbolIcon(const QString& name, Tint tint);

// The program's icon ("HeaderIcon"): freedesktop icon theme name "orvanta", else our own file.
QIcon appIcon();
QPixmap appIconPixmap(int size, qreal devicePixelRatio = 1.0);

// A symbol as a widget: drawn from the SVG at whatever size and pixel ratio it has, in a tint
// taken from its own palette, so it follows theme changes without being told.
class SymbolView : public QWidget
{
    Q_OBJECT

public:
    SymbolView(QString name, Tint tint, int size, QWidget* parent = nullptr);

    QString symbolName() const { return name; }
    void setSymbolName(const QString& symbol);
    Tint tint() const { return color; }
    void setTint(Tint tint);
    void setSymbolSize(int size);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name;
    Tint color;
    int side;
};

// The program's icon as a widget, clipped to a rounded square, optionally with a soft shadow.
class AppIconView : public QWidget
{
    Q_OBJECT

public:
    AppIconView(int size, qreal cornerRadius, bool shadow, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int side;
    qreal radius;
    bool hasShadow;
};

} // namespace orvanta::ui
