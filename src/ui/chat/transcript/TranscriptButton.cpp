#include "ui/chat/transcript/TranscriptButton.h"

#include "ui/chat/transcript/TranscriptStyle.h"
#include "ui/widgets/SymbolIcon.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QPaintDevice>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr int verticalPadding = 2;
constexpr int chevronGap = 4;
constexpr double cornerRadius = 4;

const QFont &font(TranscriptButton::Kind kind, const TranscriptStyle &style)
{
    return kind == TranscriptButton::disclosure ? style.callout : style.caption;
}

int chevronSize(const TranscriptStyle &style)
{
    return style.calloutHeight - 2;
}

void paintChevron(QPainter &painter, QPoint place, bool isOpen, const TranscriptStyle &style)
{
    const int size = chevronSize(style);
    const QPixmap chevron =
        SymbolIcon::pixmap(u"chevron.right"_s, size, style.secondary, painter.device()->devicePixelRatioF());
    painter.save();
    painter.translate(place + QPoint(size, size) / 2.0);
    if (isOpen)
        painter.rotate(90);
    painter.drawPixmap(QPointF(-size / 2.0, -size / 2.0), chevron);
    painter.restore();
}

QColor ground(const ButtonLook &look, const TranscriptStyle &style)
{
    if (look.isPressed)
        return style.faint(0.35);
    return look.isHovered ? style.faint(0.18) : QColor(Qt::transparent);
}

} // namespace

QString buttonLabel(TranscriptButton::Kind kind)
{
    switch (kind) {
    case TranscriptButton::disclosure:
        return QCoreApplication::translate("Transcript", "Thinking");
    case TranscriptButton::copyCode:
    case TranscriptButton::copyAnswer:
        return QCoreApplication::translate("Transcript", "Copy");
    case TranscriptButton::regenerate:
        return QCoreApplication::translate("Transcript", "Regenerate");
    case TranscriptButton::edit:
        return QCoreApplication::translate("Transcript", "Edit");
    case TranscriptButton::openLink:
        break; // it is labelled by the text that it stands in
    }
    return {};
}

QSize buttonSize(TranscriptButton::Kind kind, const TranscriptStyle &style)
{
    const QFontMetrics metrics(font(kind, style));
    int width = metrics.horizontalAdvance(buttonLabel(kind)) + 2 * buttonPadding;
    if (kind == TranscriptButton::disclosure)
        width += chevronSize(style) + chevronGap;
    return {width, metrics.lineSpacing() + 2 * verticalPadding};
}

void paintButton(QPainter &painter, const QRect &rect, TranscriptButton::Kind kind, const ButtonLook &look,
                 const TranscriptStyle &style)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(ground(look, style));
    painter.setPen(look.hasFocus ? QPen(style.focus, 2) : QPen(Qt::NoPen));
    const double half = look.hasFocus ? 1 : 0;
    painter.drawRoundedRect(QRectF(rect).adjusted(half, half, -half, -half), cornerRadius, cornerRadius);

    QRect label = rect.adjusted(buttonPadding, 0, -buttonPadding, 0);
    if (kind == TranscriptButton::disclosure) {
        const int size = chevronSize(style);
        paintChevron(painter, {label.left(), rect.top() + (rect.height() - size) / 2}, look.isOpen, style);
        label.setLeft(label.left() + size + chevronGap);
    }
    painter.setFont(font(kind, style));
    painter.setPen(style.text);
    painter.drawText(label, Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip, buttonLabel(kind));
    painter.restore();
}
