#include "ChatRecord.h"

#include "core/chat/ConversationFile.h"

#include <QDir>
#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

QString ChatRecord::newMessage(QRandomGenerator &random)
{
    static const QStringList pieces{u"word "_s, u"**bold** "_s,  u"`code` "_s,
                                    u"\n\n"_s,  u"- item\n"_s,   u"# Title\n"_s,
                                    u"日本 "_s, u"\U0001F680"_s, u"\n```\nint x;\n```\n"_s};
    if (random.bounded(100) < 15)
        return u"Tell me something %1"_s.arg(random.bounded(1000));
    QString text = echo;
    for (int i = random.bounded(1, random.bounded(10) == 0 ? 2000 : 60); i > 0; --i)
        text += pieces[random.bounded(pieces.size())];
    return text + QString::number(random.bounded(1'000'000));
}

void ChatRecord::add(const QUuid &id)
{
    m_ids.append(id);
    m_messages.insert(id, {});
}

void ChatRecord::remove(const QUuid &id)
{
    m_ids.removeOne(id);
    m_messages.remove(id);
}

QString ChatRecord::take(const Conversation *conversation, const Messages &before, const QString &sent,
                         bool disturbed)
{
    if (!conversation)
        return u"A conversation is gone."_s;
    const Messages &messages = conversation->messages;
    m_messages[conversation->id] = messages;
    const qsizetype answered = messages.size() - before.size() - 1;
    if (answered < 0 || answered > 1 || messages.first(before.size()) != before ||
        messages[before.size()].content != sent)
        return u"A conversation of %1 messages became one of %2, not by one message and its answer."_s
            .arg(before.size())
            .arg(messages.size());
    if (answered == 1)
        return takeReply(messages.last(), sent, disturbed);
    ++m_cut;
    return disturbed ? QString() : u"A message has no answer, and nobody was told why."_s;
}

QString ChatRecord::takeReply(const ChatMessage &reply, const QString &sent, bool disturbed)
{
    const bool isEcho = sent.startsWith(echo);
    const QString expected = sent.sliced(isEcho ? echo.size() : 0);
    const bool isWhole = isEcho ? reply.content == expected : reply.tokensPerSecond.has_value();
    ++(isWhole ? m_whole : m_cut);
    if (!isWhole && !disturbed)
        return u"An answer is incomplete, and nobody was told why."_s;
    if (isEcho && !expected.startsWith(reply.content))
        return u"An answer is not what the engine said."_s;
    return {};
}

QString ChatRecord::compareFile(const QString &folder, const QUuid &id) const
{
    QFile file(folder + u'/' + ConversationFile::name(id));
    const auto stored =
        file.open(QIODevice::ReadOnly) ? ConversationFile::decode(file.readAll()) : std::nullopt;
    const auto isSame = [](const ChatMessage &a, const ChatMessage &b) {
        return a.id == b.id && a.role == b.role && a.content == b.content && a.thinking == b.thinking;
    };
    if (stored && std::ranges::equal(stored->messages, of(id), isSame))
        return {};
    return u"%1 does not hold what was said."_s.arg(file.fileName());
}

QStringList ChatRecord::compare(const QString &folder) const
{
    QStringList faults;
    for (const QUuid &id : m_ids) {
        if (const QString fault = compareFile(folder, id); !fault.isEmpty())
            faults << fault;
    }
    const QStringList files = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    if (files.size() != m_ids.size())
        faults << u"There are %1 conversations and %2 files."_s.arg(m_ids.size()).arg(files.size());
    return faults;
}
