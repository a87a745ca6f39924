// The program's one window: menu bar, the server's toolbar, and the content below.
#pragma once

#include <QMainWindow>

#include <functional>

class AppState;
class ContentView;
class Desktop;
class TextZoom;
class UserDefaults;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // All three must outlive the window. Takes the place and size it had when it was last closed.
    MainWindow(AppState &state, Desktop &desktop, UserDefaults &defaults);

    // Whether closing the window leaves the program running without it. Unless told, it does not.
    void setStaysWhenClosed(std::function<bool()> stays) { m_staysWhenClosed = std::move(stays); }

Q_SIGNALS:
    // The user wants the program to end.
    void quitRequested();
    void settingsRequested();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void makeMenus();
    void makeViewMenu();
    void addZoom(QMenu *view);
    void enableActions();
    void restorePlace();

    AppState &m_state;
    UserDefaults &m_defaults;
    ContentView *const m_content;
    TextZoom *const m_zoom;
    QList<QAction *> m_tabActions; // what would show a tab, which the guide stands in front of
    QAction *m_grow = nullptr;
    QAction *m_shrink = nullptr;
    QAction *m_usualSize = nullptr;
    std::function<bool()> m_staysWhenClosed;
};
