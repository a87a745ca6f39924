#include "ui/widgets/BorderlessButton.h"

#include "platform/text/OutsideText.h"
#include "ui/widgets/AppearanceWatch.h"
#include "ui/widgets/PlainText.h"
#include "ui/widgets/SymbolIcon.h"

#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace {

constexpr int edge = 6; // beside icon and words
constexpr int gap = 6;  // between them

} // namespace

BorderlessButton::BorderlessButton(const QString &symbol, const QString &name, QWidget *parent)
    : QToolButton(parent)
{
    setAutoRaise(true);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(plainToolTip(name));
    setAccessibleName(shownLine(name));
    setIcon(SymbolIcon::icon(symbol));
    setIconSize({18, 18});
}

BorderlessButton::BorderlessButton(const QString &text, TextStyle style, QWidget *parent)
    : QToolButton(parent), m_style(style)
{
    setAutoRaise(true);
    setFocusPolicy(Qt::StrongFocus);
    setText(withoutMnemonics(text));
    connect(&AppearanceWatch::shared(), &AppearanceWatch::fontChanged, this, &BorderlessButton::applyStyle);
    applyStyle();
}

void BorderlessButton::setWords(const QString &words)
{
    setText(withoutMnemonics(words));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setAccessibleDescription(accessibleName());
    setAccessibleName(shownLine(words));
}

QSize BorderlessButton::sizeHint() const
{
    const QSize usual = QToolButton::sizeHint();
    if (toolButtonStyle() != Qt::ToolButtonTextBesideIcon)
        return usual;
    const int words = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    return {2 * edge + iconSize().width() + gap + words, usual.height()};
}

void BorderlessButton::paintEvent(QPaintEvent *event)
{
    if (toolButtonStyle() != Qt::ToolButtonTextBesideIcon) {
        QToolButton::paintEvent(event);
        return;
    }
    // The styles leave next to no room between icon and words.
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.text.clear();
    option.icon = {};
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
    const QRect inner = rect().adjusted(edge, 0, -edge, 0);
    const auto mode = isEnabled() ? QIcon::Normal : QIcon::Disabled;
    icon().paint(
        &painter,
        QStyle::alignedRect(layoutDirection(), Qt::AlignLeading | Qt::AlignVCenter, iconSize(), inner),
        Qt::AlignCenter, mode);
    const QRect words = inner.adjusted(iconSize().width() + gap, 0, 0, 0);
    painter.drawItemText(QStyle::visualRect(layoutDirection(), inner, words),
                         Qt::AlignLeading | Qt::AlignVCenter | Qt::TextShowMnemonic, palette(), isEnabled(),
                         text(), QPalette::ButtonText);
}

void BorderlessButton::applyStyle()
{
    if (const QFont font = styledFont(m_style); this->font() != font)
        setFont(font);
}
