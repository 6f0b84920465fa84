#include "Symbols.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

#include <memory>

namespace orvanta::ui {
namespace {

const QString kSymbolFolder = QStringLiteral(":/orvanta/symbols/");
const QString kAppIconFile = QStringLiteral(":/orvanta/orvanta.svg");

// Parsed SVGs by name and colour: the views draw the same few symbols again and again.
QSvgRenderer* rendererFor(const QString& name, const QColor& color)
{
    static QHash<QString, std::shared_ptr<QSvgRenderer>> cache;
    const QString key = name + u'|' + color.name(QColor::HexRgb);
    if (auto found = cache.constFind(key); found != cache.cend()) {
        return found->get();
    }
    QFile file(kSymbolFolder + name + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    QByteArray svg = file.readAll();
    svg.replace("currentColor", color.name(QColor::HexRgb).toLatin1());
    auto renderer = std::make_shared<QSvgRenderer>(svg);
    if (!renderer->isValid()) {
        return nullptr;
    }
    cache.insert(key, renderer);
    return renderer.get();
}

QSvgRenderer* appIconRenderer()
{
    static QSvgRenderer renderer(kAppIconFile);
    return renderer.isValid() ? &renderer : nullptr;
}

void drawSymbol(QPainter& painter, const QString& name, const QColor& color, const QRectF& rect)
{
    if (QSvgRenderer* renderer = rendererFor(name, color)) {
        painter.save();
        painter.setOpacity(painter.opacity() * static_cast<qreal>(color.alphaF()));
        renderer->render(&painter, rect);
        painter.restore();
    }
}

class SymbolIconEngine final : public QIconEngine
{
public:
    SymbolIconEngine(QString symbol, Tint symbolTint) : name(std::move(symbol)), tint(symbolTint) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        QColor color = tintColor(tint, QApplication::palette());
        if (mode == QIcon::Disabled) {
            color.setAlphaF(color.alphaF() * 0.35f);
        }
        const int side = std::min(rect.width(), rect.height());
        const QRectF square(rect.x() + (rect.width() - side) / 2.0, rect.y() + (rect.height() - side) / 2.0, side,
                            side);
        drawSymbol(*painter, name, color, square);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override
    {
        QPixmap pixmap(size * scale);
        pixmap.fill(Qt::transparent);
        pixmap.setDevicePixelRatio(scale);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }

    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override { return size; }
    QIconEngine* clone() const override { return new SymbolIconEngine(name, tint); }
    QString key() const override { return QStringLiteral("orvanta-symbol"); }
    QString iconName() override { return name; }

private:
    QString name;
    Tint tint;
};

} // namespace

QStringList symbolNames()
{
    QStringList names;
    const auto files = QDir(kSymbolFolder).entryList({QStringLiteral("*.svg")}, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        names.append(file.chopped(4));
    }
    return names;
}

bool hasSymbol(const QString& name)
{
    return QFile::exists(kSymbolFolder + name + QStringLiteral(".svg"));
}

QPixmap symbolPixmap(const QString& name, const QColor& color, int size, qreal devicePixelRatio)
{
    if (!hasSymbol(name) || size <= 0) {
        return {};
    }
    const int pixels = static_cast<int>(static_cast<qreal>(size) * devicePixelRatio);
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    drawSymbol(painter, name, color, QRectF(0, 0, pixels, pixels));
    painter.end();
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

QIcon symbolIcon(const QString& name, Tint tint)
{
    return QIcon(new SymbolIconEngine(name, tint));
}

QPixmap appIconPixmap(int size, qreal devicePixelRatio)
{
    const int pixels = static_cast<int>(static_cast<qreal>(size) * devicePixelRatio);
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    if (QSvgRenderer* renderer = appIconRenderer()) {
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer->render(&painter, QRectF(0, 0, pixels, pixels));
    }
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

QIcon appIcon()
{
    QIcon fallback;
    for (int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        fallback.addPixmap(appIconPixmap(size));
    }
    return QIcon::fromTheme(QStringLiteral("orvanta"), fallback);
}

SymbolView::SymbolView(QString symbol, Tint symbolTint, int size, QWidget* parent)
    : QWidget(parent), name(std::move(symbol)), color(symbolTint), side(size)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SymbolView::setSymbolName(const QString& symbol)
{
    if (symbol != name) {
        name = symbol;
        update();
    }
}

void SymbolView::setTint(Tint tint)
{
    if (tint != color) {
        color = tint;
        update();
    }
}

void SymbolView::setSymbolSize(int size)
{
    if (size != side) {
        side = size;
        updateGeometry();
        update();
    }
}

QSize SymbolView::sizeHint() const
{
    return {side, side};
}

void SymbolView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor tinted = tintColor(color, palette());
    if (!isEnabled()) {
        tinted.setAlphaF(tinted.alphaF() * 0.35f);
    }
    const int size = std::min(width(), height());
    drawSymbol(painter, name, tinted, QRectF((width() - size) / 2.0, (height() - size) / 2.0, size, size));
}

AppIconView::AppIconView(int size, qreal cornerRadius, bool shadow, QWidget* parent)
    : QWidget(parent), side(size), radius(cornerRadius), hasShadow(shadow)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize AppIconView::sizeHint() const
{
    const int margin = hasShadow ? 2 : 0;
    return {side + 2 * margin, side + 2 * margin};
}

void AppIconView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal margin = hasShadow ? 2.0 : 0.0;
    const QRectF square(margin, margin, side, side);
    if (hasShadow) {
        // A soft shadow: a few widening, fading outlines under the icon.
        painter.setPen(Qt::NoPen);
        for (int step = 2; step >= 1; --step) {
            QColor shade(0, 0, 0, 28 * (3 - step));
            painter.setBrush(shade);
            painter.drawRoundedRect(square.adjusted(-step * 0.5, -step * 0.5 + 1, step * 0.5, step * 0.5 + 1),
                                    radius + step * 0.5, radius + step * 0.5);
        }
    }
    QPainterPath clip;
    clip.addRoundedRect(square, radius, radius);
    painter.setClipPath(clip);
    const QIcon themed = QIcon::fromTheme(QStringLiteral("orvanta"));
    if (!themed.isNull()) {
        themed.paint(&painter, square.toRect());
    } else if (QSvgRenderer* renderer = appIconRenderer()) {
        renderer->render(&painter, square);
    }
}

} // namespace orvanta::ui
