// The usual entries for the windows themselves: how large the main one is, and which one is in front.
#pragma once

#include <QList>
#include <QMenu>

class WindowMenu : public QMenu
{
    Q_OBJECT

public:
    // `window` has the menu, and is the one that is minimized and enlarged.
    explicit WindowMenu(QWidget *window);

private:
    void listWindows();

    QWidget *const m_window;
    QAction *const m_maximize;
    QAction *const m_fullScreen;
    QList<QAction *> m_listed;
};
