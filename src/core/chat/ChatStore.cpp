#include "core/chat/ChatStore.h"

#include "core/chat/ConversationFile.h"
#include "core/engine/AppPaths.h"
#include "platform/async/WorkerQueue.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/RegularFile.h"

#include <QDir>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

bool isNewer(const Conversation &a, const Conversation &b)
{
    return a.updatedAt > b.updatedAt;
}

// No conversation comes near it.
constexpr qint64 mostBytes = 256 * 1024 * 1024;

std::optional<Conversation> readConversation(const QString &path)
{
    const std::optional<QByteArray> content = readRegularFile(path, mostBytes);
    return content ? ConversationFile::decode(*content) : std::nullopt;
}

// In the order of their names, so that conversations of the same second keep their order from start to start.
QStringList conversationFiles(const QString &folder)
{
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    const auto isOther = [](const QString &name) { return name.size() <= 5 || !name.endsWith(".json"_L1); };
    names.removeIf(isOther);
    return names;
}

// What each file holds, read on as many threads as there are processors. This one takes its share, so that
// where the others have to wait for a processor it does not wait for them.
std::vector<std::optional<Conversation>> readConversations(const QString &folder, const QStringList &names)
{
    constexpr qsizetype filesAtATime = 8;
    std::vector<std::optional<Conversation>> results(static_cast<size_t>(names.size()));
    std::atomic<qsizetype> taken = 0;
    const auto readSome = [&folder, &names, &results, &taken] {
        for (;;) {
            const qsizetype first = taken.fetch_add(filesAtATime);
            if (first >= names.size())
                return;
            const qsizetype end = std::min(first + filesAtATime, names.size());
            for (qsizetype i = first; i < end; ++i)
                results[static_cast<size_t>(i)] = readConversation(folder + u'/' + names[i]);
        }
    };
    {
        const int others = static_cast<int>(std::thread::hardware_concurrency()) - 1;
        WorkerQueue readers(others); // its end waits for them
        for (int i = 0; i < others && i < names.size() / filesAtATime; ++i)
            readers.post(readSome);
        readSome();
    }
    return results;
}

} // namespace

ChatStore::ChatStore(const QString &folder, QObject *parent) : QObject(parent), m_folder(folder)
{
    AppPaths::ensure(m_folder);
    AtomicFile::removeLeftovers(m_folder);
    load();
    m_selectedID = firstID();
}

void ChatStore::load()
{
    for (std::optional<Conversation> &read : readConversations(m_folder, conversationFiles(m_folder))) {
        if (read)
            m_conversations.append(*std::move(read));
    }
    std::stable_sort(m_conversations.begin(), m_conversations.end(), isNewer);
    reindex();
}

const Conversation *ChatStore::find(const QUuid &id) const
{
    const auto place = m_places.constFind(id);
    return place == m_places.cend() ? nullptr : &m_conversations[*place];
}

std::optional<Conversation> ChatStore::conversation(const QUuid &id) const
{
    const Conversation *const found = find(id);
    return found ? std::optional(*found) : std::nullopt;
}

void ChatStore::setSelectedID(std::optional<QUuid> id)
{
    if (id == m_selectedID)
        return;
    m_selectedID = id;
    Q_EMIT selectedIDChanged();
}

Conversation ChatStore::newConversation(const QString &model)
{
    const Conversation conversation = Conversation::make(model);
    m_conversations.prepend(conversation);
    reindex();
    m_selectedID = conversation.id;
    commit(conversation.id);
    Q_EMIT conversationsChanged();
    Q_EMIT selectedIDChanged();
    return conversation;
}

void ChatStore::mutate(const QUuid &id, const std::function<void(Conversation &)> &change)
{
    const auto place = m_places.constFind(id);
    if (place == m_places.cend())
        return;
    change(m_conversations[*place]);
    Q_EMIT conversationChanged(id);
}

void ChatStore::commit(const QUuid &id)
{
    if (const Conversation *const conversation = find(id))
        m_writer.write(path(id), [snapshot = *conversation] { return ConversationFile::encode(snapshot); });
}

void ChatStore::touch(const QUuid &id)
{
    const auto place = m_places.constFind(id);
    if (place != m_places.cend())
        m_conversations[*place].updatedAt = QDateTime::currentDateTimeUtc();
    const bool inOrder = std::is_sorted(m_conversations.cbegin(), m_conversations.cend(), isNewer);
    if (!inOrder) {
        std::stable_sort(m_conversations.begin(), m_conversations.end(), isNewer);
        reindex();
    }
    commit(id);
    if (!inOrder)
        Q_EMIT conversationsChanged();
    if (find(id))
        Q_EMIT conversationChanged(id);
}

void ChatStore::rename(const QUuid &id, const QString &title)
{
    const QString trimmed = title.trimmed();
    if (trimmed.isEmpty())
        return;
    mutate(id, [&trimmed](Conversation &conversation) { conversation.title = trimmed; });
    commit(id);
}

void ChatStore::deleteConversation(const QUuid &id)
{
    const qsizetype removed = m_conversations.removeIf([&id](const Conversation &c) { return c.id == id; });
    m_writer.remove(path(id));
    reindex();
    const bool wasSelected = m_selectedID == id;
    if (wasSelected)
        m_selectedID = firstID();
    if (removed > 0)
        Q_EMIT conversationsChanged();
    if (wasSelected)
        Q_EMIT selectedIDChanged();
}

QString ChatStore::markdown(const Conversation &conversation)
{
    QString document = "# "_L1 + conversation.title + "\n\n_Model: "_L1 + conversation.model + "_\n\n"_L1;
    for (const ChatMessage &message : conversation.messages) {
        const bool isUser = message.role == "user"_L1;
        const ParsedMessage parsed = message.parsed();
        document += isUser ? "## You\n\n"_L1 : "## Assistant\n\n"_L1;
        if (!parsed.thinking.isEmpty())
            document +=
                "<details><summary>Thinking</summary>\n\n"_L1 + parsed.thinking + "\n\n</details>\n\n"_L1;
        document += (isUser ? message.content : parsed.answer) + "\n\n"_L1;
    }
    return document;
}

void ChatStore::reindex()
{
    m_places.clear();
    m_places.reserve(m_conversations.size());
    for (qsizetype place = m_conversations.size() - 1; place >= 0; --place)
        m_places.insert(m_conversations.at(place).id, place);
}

std::optional<QUuid> ChatStore::firstID() const
{
    return m_conversations.isEmpty() ? std::nullopt : std::optional(m_conversations.first().id);
}

QString ChatStore::path(const QUuid &id) const
{
    return m_folder + u'/' + ConversationFile::name(id);
}
