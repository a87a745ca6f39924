#include "ui/chat/ConversationListModel.h"

#include "core/chat/ChatStore.h"
#include "platform/text/OutsideText.h"

#include <QElapsedTimer>

#include <algorithm>

ConversationListModel::ConversationListModel(ChatStore &store, QObject *parent,
                                             std::chrono::nanoseconds slice)
    : QAbstractListModel(parent), m_store(store), m_slice(slice), m_search(store)
{
    // A timer, since events that are posted while others are delivered come before the keyboard's.
    m_goOn.setSingleShot(true);
    connect(&m_goOn, &QTimer::timeout, this, &ConversationListModel::outdated);
    connect(&store, &ChatStore::conversationsChanged, this, [this] {
        m_listChanged = true;
        Q_EMIT outdated();
    });
    connect(&store, &ChatStore::conversationChanged, this, [this](const QUuid &id) {
        m_search.forget(id);
        m_changed.insert(id);
        Q_EMIT outdated();
    });
}

void ConversationListModel::setSearch(const QString &text)
{
    if (!m_search.setText(text))
        return;
    m_listChanged = true;
    Q_EMIT outdated();
}

void ConversationListModel::refresh()
{
    // While a reply streams its conversation changes all the time, and no other needs to be searched again.
    m_listChanged = m_listChanged || std::any_of(m_changed.cbegin(), m_changed.cend(),
                                                 [this](const QUuid &id) { return membershipChanged(id); });
    if (m_listChanged) {
        const std::optional<QList<Row>> rows = found();
        if (!rows) {
            m_goOn.start(0);
            return;
        }
        replaceRows(*rows);
    } else {
        for (const QUuid &id : std::as_const(m_changed)) {
            const Conversation *conversation = m_store.find(id);
            if (const QModelIndex index = indexOf(id); conversation && index.isValid())
                setTitle(index.row(), conversation->title);
        }
    }
    m_goOn.stop();
    m_listChanged = false;
    m_changed.clear();
}

// Nothing when the time is up; what has been found out by then is remembered.
std::optional<QList<ConversationListModel::Row>> ConversationListModel::found()
{
    QElapsedTimer clock;
    clock.start();
    QList<Row> rows;
    rows.reserve(m_store.conversations().size());
    for (const Conversation &conversation : m_store.conversations()) {
        const std::optional<bool> known = m_search.known(conversation);
        if (known ? *known : m_search.find(conversation))
            rows.append({conversation.id, conversation.title});
        // Only what is remembered brings the end nearer.
        if (!known && clock.nsecsElapsed() > m_slice.count() && m_search.known(conversation))
            return std::nullopt;
    }
    return rows;
}

bool ConversationListModel::membershipChanged(const QUuid &id)
{
    if (m_search.isBlank())
        return false;
    const Conversation *conversation = m_store.find(id);
    const bool found = conversation && m_search.find(*conversation);
    return found != indexOf(id).isValid();
}

// Keeps the rows that both lists begin and end with.
void ConversationListModel::replaceRows(const QList<Row> &rows)
{
    const auto same = [](const Row &left, const Row &right) { return left.id == right.id; };
    const auto head = std::mismatch(m_rows.cbegin(), m_rows.cend(), rows.cbegin(), rows.cend(), same);
    const qsizetype first = head.first - m_rows.cbegin();
    const qsizetype limit = qMin(m_rows.size(), rows.size()) - first;
    qsizetype tail = 0;
    while (tail < limit && same(m_rows.at(m_rows.size() - 1 - tail), rows.at(rows.size() - 1 - tail)))
        ++tail;

    if (const qsizetype end = m_rows.size() - tail; first < end) {
        beginRemoveRows({}, static_cast<int>(first), static_cast<int>(end - 1));
        m_rows.remove(first, end - first);
        endRemoveRows();
    }
    if (const qsizetype end = rows.size() - tail; first < end) {
        beginInsertRows({}, static_cast<int>(first), static_cast<int>(end - 1));
        m_rows.insert(first, end - first, {});
        std::copy(rows.cbegin() + first, rows.cbegin() + end, m_rows.begin() + first);
        endInsertRows();
    }
    for (qsizetype row = 0; row < rows.size(); ++row)
        setTitle(row, rows.at(row).title);
}

void ConversationListModel::setTitle(qsizetype row, const QString &title)
{
    if (m_rows.at(row).title == title)
        return;
    m_rows[row].title = title;
    const QModelIndex changed = index(static_cast<int>(row));
    Q_EMIT dataChanged(changed, changed);
}

QModelIndex ConversationListModel::indexOf(const QUuid &id) const
{
    for (int row = 0; row < m_rows.size(); ++row) {
        if (m_rows.at(row).id == id)
            return index(row);
    }
    return {};
}

QUuid ConversationListModel::idAt(const QModelIndex &index) const
{
    return index.isValid() ? m_rows.at(index.row()).id : QUuid();
}

int ConversationListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant ConversationListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole)
        return {};
    return shownLine(m_rows.at(index.row()).title);
}
