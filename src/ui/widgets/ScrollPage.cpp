#include "ui/widgets/ScrollPage.h"

#include "ui/widgets/ScrollAreaAccessible.h"

#include <QScrollBar>

ScrollPage::ScrollPage(QWidget *parent) : QScrollArea(parent)
{
    ScrollAreaAccessible::install();
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    auto *content = new QWidget;
    m_column = new QVBoxLayout(content);
    m_column->setContentsMargins(24, 24, 24, 24);
    m_column->setSpacing(16);
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setAccessibleName(tr("Scroll"));
}
