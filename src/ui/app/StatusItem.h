// The program's item in the desktop's tray or menu bar: how the server does, and the few actions that need no
// window. There while the user wants it and the desktop has a place for it.
#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

#include <memory>

class AppState;
class Desktop;
class TrayHost;
class UserDefaults;

class StatusItem : public QObject
{
    Q_OBJECT

public:
    // All four must outlive the item.
    StatusItem(AppState &state, Desktop &desktop, UserDefaults &defaults, TrayHost &host);

    // The user can reach the program by it, with no window open.
    bool isShown() const { return m_shown; }
    QMenu &menu() { return m_menu; }

Q_SIGNALS:
    void shownChanged();
    void quitRequested();

private:
    void render();
    void place();

    AppState &m_state;
    Desktop &m_desktop;
    UserDefaults &m_defaults;
    TrayHost &m_host;
    QMenu m_menu;
    QAction *const m_status;
    QAction *const m_switch;
    std::unique_ptr<QSystemTrayIcon> m_icon; // before the menu goes
    bool m_shown = false;
};
