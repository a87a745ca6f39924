// The chat tab: the list of conversations with its search field on the left, the selected one on the right.
#pragma once

#include <QHash>
#include <QString>
#include <QUuid>
#include <QWidget>

class AppState;
class ChatPane;
class ConversationListModel;
class Desktop;
class QHBoxLayout;
class QLineEdit;
class RowListView;
class TextZoom;
class UserDefaults;

class ChatView : public QWidget
{
    Q_OBJECT

public:
    // All three must outlive the view.
    ChatView(AppState &state, Desktop &desktop, UserDefaults &defaults, QWidget *parent = nullptr);

    // Puts the focus into the search field.
    void startSearch();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void render();
    void renderPane();
    QWidget *makeList();
    QWidget *makePlaceholder();
    void showMenu(const QPoint &position);
    void rename(const QUuid &id);

    AppState &m_state;
    Desktop &m_desktop;
    TextZoom *const m_zoom;
    ConversationListModel *const m_model;
    QLineEdit *const m_search;
    RowListView *const m_list;
    QWidget *const m_placeholder;
    ChatPane *m_pane = nullptr;
    QHash<QUuid, QString> m_drafts; // of the chats that are not shown
    bool m_rendering = false;       // what the list selects is then not the user's doing
};
