// What the main window shows below its toolbar: the banner, and the first-run guide or, once that is done,
// the sidebar beside the screen of the selected tab.
#pragma once

#include <QWidget>

class AppState;
class ChatView;
class Desktop;
class GuideView;
class QStackedWidget;
class UserDefaults;

class ContentView : public QWidget
{
    Q_OBJECT

public:
    ContentView(AppState &state, Desktop &desktop, UserDefaults &defaults, QWidget *parent = nullptr);

    // Shows the chat tab and puts the focus into its search field.
    void searchChats();

private:
    void render();
    void announcePulls();

    AppState &m_state;
    UserDefaults &m_defaults;
    ChatView *const m_chat;
    QStackedWidget *const m_screens;
    QWidget *const m_tabs;
    GuideView *const m_guide; // null where it was done before
};
