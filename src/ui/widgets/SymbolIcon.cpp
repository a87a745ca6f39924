#include "ui/widgets/SymbolIcon.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

// A static library's resources are dropped by the linker unless somebody asks for them; the macro wants to
// stand outside every namespace.
static void initResources()
{
    Q_INIT_RESOURCE(ui);
}

namespace {

using namespace Qt::StringLiterals;

QString fileName(const QString &symbol)
{
    static const QHash<QString, QString> names = {
        {u"1.circle"_s, u"circle-1"_s},
        {u"2.circle"_s, u"circle-2"_s},
        {u"3.circle"_s, u"circle-3"_s},
        {u"bubble.left.and.bubble.right"_s, u"messages-square"_s},
        {u"checkmark.circle.fill"_s, u"circle-check"_s},
        {u"chevron.right"_s, u"chevron-right"_s},
        {u"cpu"_s, u"cpu"_s},
        {u"doc.on.doc"_s, u"copy"_s},
        {u"exclamationmark.triangle.fill"_s, u"triangle-alert"_s},
        {u"magnifyingglass"_s, u"search"_s},
        {u"memorychip"_s, u"memory-stick"_s},
        {u"paperplane.fill"_s, u"send"_s},
        {u"questionmark.circle"_s, u"circle-question-mark"_s},
        {u"server.rack"_s, u"server"_s},
        {u"slider.horizontal.3"_s, u"sliders-horizontal"_s},
        {u"square.and.arrow.up"_s, u"share"_s},
        {u"square.and.pencil"_s, u"square-pen"_s},
        {u"square.stack.3d.up"_s, u"layers"_s},
        {u"star.fill"_s, u"star"_s},
        {u"stop.circle.fill"_s, u"circle-stop"_s},
        {u"trash"_s, u"trash-2"_s},
    };
    Q_ASSERT_X(names.contains(symbol), "SymbolIcon", qUtf8Printable(symbol));
    return u":/tarnwick/icons/"_s + names.value(symbol) + u".svg"_s;
}

QByteArray svg(const QString &symbol)
{
    [[maybe_unused]] static const bool ready = (initResources(), true);
    QFile file(fileName(symbol));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void draw(QPainter *painter, const QString &symbol, const QRectF &place)
{
    const QByteArray outlines = svg(symbol);
    if (!symbol.endsWith(".fill"_L1)) {
        QSvgRenderer(outlines).render(painter, place);
        return;
    }
    // The first shape filled, and the others cut out of it.
    const qsizetype body = outlines.indexOf('>', outlines.indexOf("<svg")) + 1;
    const qsizetype others = outlines.indexOf("/>", body) + 2;
    QByteArray filled = outlines.first(others) + "</svg>";
    filled.replace("fill=\"none\"", "fill=\"currentColor\"");
    QSvgRenderer(filled).render(painter, place);
    painter->setCompositionMode(QPainter::CompositionMode_DestinationOut);
    QSvgRenderer(outlines.first(body) + outlines.sliced(others)).render(painter, place);
}

class SymbolEngine : public QIconEngine
{
public:
    SymbolEngine(QString symbol, Tint tint) : m_symbol(std::move(symbol)), m_tint(tint) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const double ratio = painter->device()->devicePixelRatioF();
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    // `size` is in device pixels.
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State, qreal scale) override
    {
        const QPalette palette = QGuiApplication::palette();
        QColor color = tintColor(mode == QIcon::Selected ? Tint::onAccent : m_tint, palette);
        if (mode == QIcon::Disabled)
            color = palette.color(QPalette::Disabled, QPalette::WindowText);
        return SymbolIcon::pixmap(m_symbol, qRound(qMin(size.width(), size.height()) / scale), color, scale);
    }

    QIconEngine *clone() const override { return new SymbolEngine(m_symbol, m_tint); }

private:
    const QString m_symbol;
    const Tint m_tint;
};

} // namespace

QIcon SymbolIcon::icon(const QString &symbol, Tint tint)
{
    return QIcon(new SymbolEngine(symbol, tint));
}

QPixmap SymbolIcon::pixmap(const QString &symbol, int size, const QColor &color, double devicePixelRatio)
{
    const int pixels = qRound(size * devicePixelRatio);
    const QString key =
        u"symbol %1 %2 %3 %4"_s.arg(symbol).arg(pixels).arg(color.rgba()).arg(devicePixelRatio);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    pixmap = QPixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    draw(&painter, symbol, QRectF(0, 0, pixels, pixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    painter.end();
    pixmap.setDevicePixelRatio(devicePixelRatio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}
