#include "ui/widgets/Button.h"

#include "ui/widgets/AppearanceWatch.h"
#include "ui/widgets/PlainText.h"

Button::Button(const QString &text, QWidget *parent) : QPushButton(withoutMnemonics(text), parent) {}

void Button::setTextStyle(TextStyle style)
{
    const auto follow = [this, style] { setFont(styledFont(style)); };
    connect(&AppearanceWatch::shared(), &AppearanceWatch::fontChanged, this, follow);
    follow();
}

QSize Button::sizeHint() const
{
    constexpr int room = 14; // on either side; some styles leave next to none around longer words
    const int words = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    const QSize usual = QPushButton::sizeHint();
    return {qMax(usual.width(), words + 2 * room), usual.height()};
}
