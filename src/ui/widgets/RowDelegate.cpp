#include "ui/widgets/RowDelegate.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/PlainText.h"
#include "ui/widgets/SymbolIcon.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr int iconSize = 18;

QRect bar(const QRect &row)
{
    return row.adjusted(8, 1, -8, -1);
}

QRect textRect(const QRect &row, bool withIcon)
{
    return bar(row).adjusted(withIcon ? 10 + iconSize + 10 : 10, 0, -10, 0);
}

QString text(const QModelIndex &index)
{
    return shownLine(index.data(Qt::DisplayRole).toString()).simplified();
}

} // namespace

void RowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const bool focused = selected && option.widget->hasFocus() && option.widget->isActiveWindow();
    const bool hovered = option.state.testFlag(QStyle::State_MouseOver);
    const QPalette &palette = option.palette;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (selected || hovered) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(focused ? tintColor(Tint::accent, palette)
                                  : tintColor(Tint::text, palette, selected ? 0.12 : 0.05));
        painter->drawRoundedRect(bar(option.rect), 6, 6);
    }
    const QColor color = tintColor(focused ? Tint::onAccent : Tint::text, palette);
    const QString symbol = index.data(symbolRole).toString();
    if (!symbol.isEmpty()) {
        const QRect row = bar(option.rect);
        const QRect place(row.left() + 10, row.center().y() - iconSize / 2 + 1, iconSize, iconSize);
        painter->drawPixmap(
            QStyle::visualRect(option.direction, row, place),
            SymbolIcon::pixmap(symbol, iconSize, color, painter->device()->devicePixelRatioF()));
    }
    const QRect place =
        QStyle::visualRect(option.direction, bar(option.rect), textRect(option.rect, !symbol.isEmpty()));
    painter->setPen(color);
    painter->drawText(place, Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine,
                      option.fontMetrics.elidedText(text(index), Qt::ElideRight, place.width()));
    painter->restore();
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    return {iconSize, qMax(34, option.fontMetrics.height() + 16)};
}

bool RowDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                            const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const bool withIcon = !index.data(symbolRole).toString().isEmpty();
    const bool cut =
        view->fontMetrics().horizontalAdvance(text(index)) > textRect(option.rect, withIcon).width();
    QToolTip::showText(event->globalPos(),
                       cut ? plainToolTip(index.data(Qt::DisplayRole).toString()) : QString(), view);
    return true;
}
