// Every conversation, held in memory, ordered by recency and kept in one file each; also which of them is
// shown. Nothing here fails aloud: what cannot be read stays on the disk, what cannot be written stays in
// memory and is tried again.
#pragma once

#include "core/chat/Conversation.h"
#include "core/chat/ConversationWriter.h"
#include "platform/async/Task.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <chrono>
#include <functional>
#include <optional>

class ChatStore : public QObject
{
    Q_OBJECT

public:
    // Makes `folder` if need be, loads what it holds and selects the newest conversation. Files are read on
    // other threads, all of which have ended on return.
    explicit ChatStore(const QString &folder, QObject *parent = nullptr);

    // Newest first by updatedAt, save that a new conversation is put in front and that neither renaming nor
    // mutate() moves one. A copy kept over a change makes that change copy the list: look, don't keep.
    const QList<Conversation> &conversations() const { return m_conversations; }

    // Null when there is none. Valid until the list next changes.
    const Conversation *find(const QUuid &id) const;
    // A copy; find() costs nothing where a look is enough.
    std::optional<Conversation> conversation(const QUuid &id) const;

    // The conversation shown, if any.
    std::optional<QUuid> selectedID() const { return m_selectedID; }
    void setSelectedID(std::optional<QUuid> id);

    // Puts an empty conversation in front, selects and saves it.
    Conversation newConversation(const QString &model);

    // Lets `change` work on the conversation in place; neither saves nor reorders. `change` must
    // neither call the store nor touch the id. A chunk appended to the last message costs as much as the
    // chunk.
    void mutate(const QUuid &id, const std::function<void(Conversation &)> &change);

    // Saves the conversation as it is now; the file is encoded and written in the background.
    void commit(const QUuid &id);

    // Stamps the conversation as updated now, reorders the list and saves.
    void touch(const QUuid &id);

    // Trims `title`; a blank one changes nothing. Saves.
    void rename(const QUuid &id, const QString &title);

    // Removes the conversation and its file, in the background and behind the saves asked for before. When it
    // was selected, the first one left is.
    void deleteConversation(const QUuid &id);

    // How many files are still to be written or removed.
    int pendingSaves() const { return m_writer.pending(); }
    // Returns true as soon as nothing is pending, false after `limit`.
    Task<bool> savesWritten(std::chrono::milliseconds limit) const { return m_writer.finished(limit); }

    // The conversation as a Markdown document for export.
    static QString markdown(const Conversation &conversation);

Q_SIGNALS:
    // A conversation came, went or changed its place.
    void conversationsChanged();
    // A conversation's own fields or messages changed.
    void conversationChanged(const QUuid &id);
    void selectedIDChanged();

private:
    void load();
    void reindex();
    std::optional<QUuid> firstID() const;
    QString path(const QUuid &id) const;

    const QString m_folder;
    QList<Conversation> m_conversations;
    QHash<QUuid, qsizetype> m_places; // where the first conversation with an id is
    std::optional<QUuid> m_selectedID;
    ConversationWriter m_writer;
};
