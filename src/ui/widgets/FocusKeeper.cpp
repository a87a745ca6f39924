#include "ui/widgets/FocusKeeper.h"

#include <QAbstractButton>

FocusKeeper::FocusKeeper(QWidget *area) : m_area(area), m_focused(area->window()->focusWidget())
{
    if (m_focused && !area->isAncestorOf(m_focused))
        m_focused.clear();
}

FocusKeeper::~FocusKeeper()
{
    if (!m_focused || m_focused->isVisibleTo(m_area))
        return;
    const QList<QAbstractButton *> buttons = m_area->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        if (button->isVisibleTo(m_area) && button->isEnabled()) {
            button->setFocus();
            return;
        }
    }
}
