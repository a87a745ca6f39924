#include "ui/chat/ChatView.h"

#include "core/app/AppState.h"
#include "platform/text/OutsideText.h"
#include "ui/chat/ChatPane.h"
#include "ui/chat/ConversationListModel.h"
#include "ui/chat/RenameDialog.h"
#include "ui/chat/TextZoom.h"
#include "ui/widgets/BorderlessButton.h"
#include "ui/widgets/Divider.h"
#include "ui/widgets/LineEdit.h"
#include "ui/widgets/ProminentButton.h"
#include "ui/widgets/RenderScheduler.h"
#include "ui/widgets/RowListView.h"
#include "ui/widgets/SymbolIcon.h"
#include "ui/widgets/SymbolLabel.h"
#include "ui/widgets/TextLabel.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

ChatView::ChatView(AppState &state, Desktop &desktop, UserDefaults &defaults, QWidget *parent)
    : QWidget(parent),
      m_state(state),
      m_desktop(desktop),
      m_zoom(new TextZoom(defaults, this)),
      m_model(new ConversationListModel(state.chats(), this)),
      m_search(new LineEdit),
      m_list(new RowListView),
      m_placeholder(makePlaceholder())
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(makeList());
    row->addWidget(new Divider(Qt::Vertical));
    row->addWidget(m_placeholder, 1);

    connect(m_search, &QLineEdit::textChanged, m_model, &ConversationListModel::setSearch);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &current) {
                if (!m_rendering && current.isValid())
                    m_state.chats().setSelectedID(m_model->idAt(current));
            });
    connect(m_list, &QListView::customContextMenuRequested, this, &ChatView::showMenu);

    render();
    auto *scheduler = new RenderScheduler(this, [this] { render(); });
    scheduler->follow(m_model, &ConversationListModel::outdated);
    scheduler->follow(&m_state.chats(), &ChatStore::selectedIDChanged);
}

QWidget *ChatView::makeList()
{
    m_search->setPlaceholderText(tr("Search chats"));
    m_search->setAccessibleName(tr("Search chats"));
    m_search->setMaxLength(longestLine);
    m_search->setClearButtonEnabled(true);
    m_search->addAction(SymbolIcon::icon(u"magnifyingglass"_s, Tint::secondary), QLineEdit::LeadingPosition)
        ->setText(tr("Search"));
    auto *newChat = new BorderlessButton(u"square.and.pencil"_s, tr("New chat"));
    connect(newChat, &QToolButton::clicked, this, [this] { m_state.newChat(); });

    m_list->setModel(m_model);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->setAccessibleName(tr("Chats"));

    auto *top = new QHBoxLayout;
    top->setContentsMargins(10, 10, 10, 10);
    top->setSpacing(6);
    top->addWidget(m_search, 1);
    top->addWidget(newChat);
    auto *part = new QWidget;
    part->setFixedWidth(230);
    part->setBackgroundRole(QPalette::Window);
    part->setAutoFillBackground(true);
    auto *column = new QVBoxLayout(part);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(top);
    column->addWidget(m_list, 1);
    return part;
}

QWidget *ChatView::makePlaceholder()
{
    auto *newChat = new ProminentButton(tr("New chat"));
    connect(newChat, &QPushButton::clicked, this, [this] { m_state.newChat(); });
    auto *part = new QWidget;
    auto *column = new QVBoxLayout(part);
    column->setSpacing(12);
    column->addStretch(1);
    column->addWidget(new SymbolLabel(u"bubble.left.and.bubble.right"_s, 40, Tint::secondary), 0,
                      Qt::AlignHCenter);
    column->addWidget(new TextLabel(tr("No chat selected"), TextStyle::title3), 0, Qt::AlignHCenter);
    column->addWidget(newChat, 0, Qt::AlignHCenter);
    column->addStretch(1);
    return part;
}

// Before the first time Qt would give the focus to the search.
void ChatView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (m_pane && !focusWidget())
        m_pane->focusInput();
}

void ChatView::startSearch()
{
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

void ChatView::render()
{
    const QScopedValueRollback rendering(m_rendering, true);
    m_model->setGenerating(m_state.generatingID());
    m_model->refresh();
    const QModelIndex selected = m_model->indexOf(m_state.chats().selectedID().value_or(QUuid()));
    if (!selected.isValid()) {
        // The list has gone over to a neighbour of the row that left it.
        m_list->selectionModel()->clear();
    } else if (selected != m_list->currentIndex()) {
        m_list->setCurrentIndex(selected);
        m_list->scrollTo(selected);
    }
    renderPane();
}

void ChatView::renderPane()
{
    const std::optional<QUuid> selected = m_state.chats().selectedID();
    const bool exists = selected && m_state.chats().find(*selected);
    if (m_pane && (!exists || m_pane->id() != *selected)) {
        if (m_state.chats().find(m_pane->id()))
            m_drafts.insert(m_pane->id(), m_pane->draft());
        delete m_pane;
        m_pane = nullptr;
    }
    m_placeholder->setVisible(!exists);
    if (!exists || m_pane)
        return;
    m_pane = new ChatPane(m_state, m_desktop, *m_zoom, *selected);
    m_pane->setDraft(m_drafts.take(*selected));
    static_cast<QHBoxLayout *>(layout())->addWidget(m_pane, 1);
    // Whoever goes through the list with the keyboard stays there.
    if (isVisible() && !m_list->hasFocus())
        m_pane->focusInput();
}

void ChatView::showMenu(const QPoint &position)
{
    const QModelIndex index = m_list->indexAt(position);
    if (!index.isValid())
        return;
    const QUuid id = m_model->idAt(index);
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(tr("Rename…")), &QAction::triggered, this, [this, id] { rename(id); });
    connect(menu->addAction(SymbolIcon::icon(u"trash"_s, Tint::red), tr("Delete")), &QAction::triggered, this,
            [this, id] { m_state.chats().deleteConversation(id); });
    menu->popup(m_list->viewport()->mapToGlobal(position));
}

void ChatView::rename(const QUuid &id)
{
    const Conversation *conversation = m_state.chats().find(id);
    if (!conversation)
        return;
    auto *dialog = new RenameDialog(conversation->title, this);
    connect(dialog, &RenameDialog::renamed, this,
            [this, id](const QString &title) { m_state.chats().rename(id, title); });
    dialog->open();
}
