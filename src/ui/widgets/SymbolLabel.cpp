#include "ui/widgets/SymbolLabel.h"

#include "ui/widgets/AppearanceWatch.h"
#include "ui/widgets/SymbolIcon.h"

#include <QFontMetrics>
#include <QPainter>

SymbolLabel::SymbolLabel(const QString &symbol, int size, Tint tint, const QString &name, QWidget *parent)
    : Graphic(parent), m_symbol(symbol), m_size(size), m_tint(tint)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(name);
}

SymbolLabel::SymbolLabel(const QString &symbol, TextStyle style, Tint tint, const QString &name,
                         QWidget *parent)
    : SymbolLabel(symbol, 0, tint, name, parent)
{
    const auto follow = [this, style] {
        m_size = QFontMetrics(styledFont(style)).height();
        updateGeometry();
    };
    connect(&AppearanceWatch::shared(), &AppearanceWatch::fontChanged, this, follow);
    follow();
}

void SymbolLabel::setSymbol(const QString &symbol, Tint tint)
{
    if (symbol == m_symbol && tint == m_tint)
        return;
    m_symbol = symbol;
    m_tint = tint;
    update();
}

void SymbolLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPoint corner((width() - m_size) / 2, (height() - m_size) / 2);
    painter.drawPixmap(
        corner, SymbolIcon::pixmap(m_symbol, m_size, tintColor(m_tint, palette()), devicePixelRatioF()));
}
