#include "ui/app/WindowMenu.h"

#include "ui/widgets/PlainText.h"

#include <QApplication>

WindowMenu::WindowMenu(QWidget *window)
    : QMenu(tr("&Window"), window),
      m_window(window),
      m_maximize(new QAction(tr("Ma&ximize"), this)),
      m_fullScreen(new QAction(tr("&Full Screen"), this))
{
    QAction *minimize = addAction(tr("Mi&nimize"));
    minimize->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_M));
    connect(minimize, &QAction::triggered, window, &QWidget::showMinimized);
    addAction(m_maximize);
    m_maximize->setCheckable(true);
    addAction(m_fullScreen);
    m_fullScreen->setCheckable(true);
    const QKeySequence usual(QKeySequence::FullScreen); // of which not every desktop has one
    m_fullScreen->setShortcut(usual.isEmpty() ? QKeySequence(Qt::Key_F11) : usual);
    addSeparator();
    const auto toggle = [window](Qt::WindowState state) {
        return [window, state] { window->setWindowState(window->windowState() ^ state); };
    };
    connect(m_maximize, &QAction::triggered, window, toggle(Qt::WindowMaximized));
    connect(m_fullScreen, &QAction::triggered, window, toggle(Qt::WindowFullScreen));
    connect(this, &QMenu::aboutToShow, this, &WindowMenu::listWindows);
}

void WindowMenu::listWindows()
{
    m_maximize->setChecked(m_window->isMaximized());
    m_fullScreen->setChecked(m_window->isFullScreen());
    qDeleteAll(std::exchange(m_listed, {}));
    QWidgetList windows = QApplication::topLevelWidgets();
    windows.removeOne(m_window);
    windows.prepend(m_window);
    for (QWidget *window : std::as_const(windows)) {
        if (!window->isVisible() || window->windowType() != Qt::Window)
            continue;
        QAction *entry = addAction(withoutMnemonics(window->windowTitle()));
        entry->setCheckable(true);
        entry->setChecked(window->isActiveWindow());
        connect(entry, &QAction::triggered, window, [window] {
            window->raise();
            window->activateWindow();
        });
        m_listed.append(entry);
    }
}
