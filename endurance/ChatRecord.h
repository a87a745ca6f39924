// What was said in each conversation, kept apart from the program that is tested and compared with what it
// holds and stores.
#pragma once

#include "core/chat/Conversation.h"

#include <QHash>
#include <QList>
#include <QRandomGenerator>
#include <QString>
#include <QStringList>
#include <QUuid>

class ChatRecord
{
public:
    using Messages = QList<ChatMessage>;

    // A message that begins so is answered with the rest of it.
    static inline const QString echo = QStringLiteral("echo ");

    // Most are to be echoed; some are long.
    static QString newMessage(QRandomGenerator &random);

    // In the order they were begun.
    const QList<QUuid> &ids() const { return m_ids; }
    bool contains(const QUuid &id) const { return m_messages.contains(id); }
    Messages of(const QUuid &id) const { return m_messages.value(id); }
    void add(const QUuid &id);
    void remove(const QUuid &id);

    // Takes over a conversation that held `before`, to which `sent` was said. An answer may be cut short, or
    // missing, when it was `disturbed`. Returns what is wrong; empty when nothing is.
    QString take(const Conversation *conversation, const Messages &before, const QString &sent,
                 bool disturbed);

    // What is wrong with the files of `folder`, with that of one conversation or with all there is.
    QString compareFile(const QString &folder, const QUuid &id) const;
    QStringList compare(const QString &folder) const;

    int wholeAnswers() const { return m_whole; }
    int cutAnswers() const { return m_cut; }

private:
    QString takeReply(const ChatMessage &reply, const QString &sent, bool disturbed);

    QList<QUuid> m_ids;
    QHash<QUuid, Messages> m_messages;
    int m_whole = 0;
    int m_cut = 0;
};
