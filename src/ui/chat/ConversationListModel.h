// The conversations that a search finds, in the store's order, as rows of a list. It follows the store only
// when refresh() is called, and then changes the rows that differ and no others.
#pragma once

#include "ui/chat/ConversationSearch.h"

#include <QAbstractListModel>
#include <QList>
#include <QSet>
#include <QString>
#include <QTimer>
#include <QUuid>

#include <chrono>
#include <optional>

class ChatStore;

class ConversationListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    // `store` must outlive the model. A refresh() that searches stops soon after `slice`.
    explicit ConversationListModel(ChatStore &store, QObject *parent = nullptr,
                                   std::chrono::nanoseconds slice = std::chrono::milliseconds(5));

    // Takes effect with a later refresh(), as do changes of the store.
    void setSearch(const QString &text);
    // Says with the next refresh() whose reply is being generated: nothing but its end and the title changes.
    void setGenerating(const std::optional<QUuid> &id) { m_search.setGenerating(id); }
    // A search that takes longer leaves the rows as they are and says
    // in a later turn of the event loop that it wants to go on.
    void refresh();

    QModelIndex indexOf(const QUuid &id) const;
    QUuid idAt(const QModelIndex &index) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    // There is something to refresh.
    void outdated();

private:
    struct Row
    {
        QUuid id;
        QString title;
    };

    std::optional<QList<Row>> found();
    bool membershipChanged(const QUuid &id);
    void replaceRows(const QList<Row> &rows);
    void setTitle(qsizetype row, const QString &title);

    ChatStore &m_store;
    const std::chrono::nanoseconds m_slice;
    ConversationSearch m_search;
    QTimer m_goOn;
    QList<Row> m_rows;
    bool m_listChanged = true;
    QSet<QUuid> m_changed; // conversations to look at again
};
