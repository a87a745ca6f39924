#include "core/chat/ChatStore.h"
#include "core/chat/ConversationFile.h"
#include "support/Table.h"
#include "support/TestFolder.h"
#include "support/Waiting.h"

#include <QFileInfo>
#include <QSignalSpy>

#include <atomic>
#include <thread>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QStringList titles(const ChatStore &store)
{
    QStringList result;
    for (const Conversation &conversation : store.conversations())
        result.append(conversation.title);
    return result;
}

bool saved(const ChatStore &store)
{
    return ::waitFor(store.savesWritten(30s)) && store.pendingSaves() == 0;
}

} // namespace

class ChatStoreTest : public QObject
{
    Q_OBJECT

    std::optional<TestFolder> m_folder;

    // A file with a new conversation that was updated so many seconds after the start of 1970.
    Conversation put(const QString &title, qint64 seconds, const QString &name) const
    {
        Conversation conversation = Conversation::make(u"qwen3:4b"_s);
        conversation.title = title;
        conversation.createdAt = conversation.updatedAt = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
        m_folder->put(name, *ConversationFile::encode(conversation));
        return conversation;
    }
    std::optional<Conversation> read(const QUuid &id) const
    {
        return ConversationFile::decode(m_folder->contentOf(ConversationFile::name(id)));
    }

private Q_SLOTS:
    // In memory where the system has such a place: there the writer keeps up with the test, and the two get
    // in each other's way more often than on a disk that makes every save wait.
    void init()
    {
        const QString memory = u"/dev/shm"_s;
        m_folder.emplace(QFileInfo(memory).isWritable() ? memory : QDir::tempPath());
    }

    void loads()
    {
        constexpr int count = 1'500;
        for (int i = 0; i < count; ++i)
            put(QString::number(i), i * 7 % count, QString::number(i) + u".json"_s);
        const Conversation newest = put(u"newest"_s, count + 2, u".hidden.json"_s);
        put(u"b"_s, count + 1, u"m2.json"_s);
        put(u"a"_s, count + 1, u"m1.json"_s);
        for (const QString &name : {u"A.JSON"_s, u"notes.txt"_s, u".json"_s, u"folder.json/x"_s})
            put(u"skipped"_s, count + 3, name);
        m_folder->put(u"broken.json"_s, "{");
        // What would never end, or take all memory, were it read.
        const QString pipe = m_folder->filePath(u"pipe"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(QFile::link(pipe, m_folder->filePath(u"link.json"_s)));
        QVERIFY(QFile::link(u"/dev/zero"_s, m_folder->filePath(u"zero.json"_s)));
        QVERIFY(QFile::resize(m_folder->put(u"sparse.json"_s, "{"), 40'000'000'000));
        const QStringList before = m_folder->entries();
        m_folder->put(u".tarnwick-0123456789abcdef.tmp"_s, "left by a crash");

        const ChatStore store(m_folder->path());
        QCOMPARE(store.selectedID(), std::optional(newest.id));
        QCOMPARE(m_folder->entries(), before);
        QStringList expected{u"newest"_s, u"a"_s, u"b"_s};
        for (int place = count - 1; place >= 0; --place)
            expected << QString::number(place * 643 % count); // 7 * 643 is 1 modulo `count`
        QCOMPARE(titles(store), expected);
    }

    void mutateNeitherSavesNorReorders()
    {
        ChatStore store(m_folder->path());
        const QUuid first = store.newConversation(u"a"_s).id;
        store.newConversation(u"b"_s);
        QVERIFY(saved(store));
        const QSignalSpy one(&store, &ChatStore::conversationChanged);
        store.mutate(first, [](Conversation &c) { c.title = u"changed"_s; });
        store.mutate(QUuid::createUuid(), [](Conversation &c) { c.title = u"never"_s; });
        store.rename(first, u" \n "_s);
        QCOMPARE(store.pendingSaves(), 0);
        QCOMPARE(titles(store), (QStringList{u"New chat"_s, u"changed"_s}));
        QCOMPARE(one, (QList<QVariantList>{{first}}));

        // The file gets what is there when it is asked for.
        store.rename(first, u"  Trip plan "_s);
        store.mutate(first, [](Conversation &c) { c.title = u"later"_s; });
        QVERIFY(saved(store));
        QCOMPARE(read(first)->title, u"Trip plan"_s);
    }

    void aChunkCostsNoMoreThanItself()
    {
        ChatStore store(m_folder->path());
        const QUuid id = store.newConversation(u"m"_s).id;
        store.mutate(id, [](Conversation &c) { c.messages.append(ChatMessage::make(u"assistant"_s)); });
        const ChatMessage *const message = store.find(id)->messages.constData();
        store.mutate(id, [](Conversation &c) { c.messages.last().content.reserve(1'000); });
        const QChar *const text = message->content.constData();
        store.mutate(id, [](Conversation &c) { c.messages.last().content += u"chunk"_s; });
        QCOMPARE(store.find(id)->messages.constData(), message);
        QCOMPARE(message->content.constData(), text);
    }

    void deletes()
    {
        // The id in a file counts, not the file's name; and two files may hold the same one.
        Conversation twice = put(u"new"_s, 2, u"x.json"_s);
        twice.title = u"old"_s;
        twice.updatedAt = twice.createdAt.addSecs(-1);
        m_folder->put(u"y.json"_s, *ConversationFile::encode(twice));
        ChatStore store(m_folder->path());
        QCOMPARE(store.find(twice.id)->title, u"new"_s);
        const QUuid first = store.newConversation(u"a"_s).id;
        const QUuid second = store.newConversation(u"b"_s).id;
        store.commit(twice.id);
        QVERIFY(saved(store) && m_folder->entries().size() == 5);

        const QSignalSpy selection(&store, &ChatStore::selectedIDChanged);
        store.deleteConversation(twice.id);
        QCOMPARE(selection.size(), 0);
        store.deleteConversation(second);
        QCOMPARE(store.selectedID(), std::optional(first));
        store.touch(second);
        store.deleteConversation(first);
        QVERIFY(!store.selectedID() && store.conversations().isEmpty());
        QCOMPARE(selection.size(), 2);
        QVERIFY(saved(store));
        QCOMPARE(m_folder->entries(), (QStringList{u"x.json"_s, u"y.json"_s}));
    }

    // Saves and deletions asked for faster than they are done, while somebody else reads the files.
    void savesInOrder()
    {
        ChatStore store(m_folder->path());
        const QUuid kept = store.newConversation(u"m"_s).id;
        QVERIFY(saved(store));
        std::atomic<bool> ended = false;
        int unreadable = 0;
        std::thread reader([&] {
            while (!ended)
                unreadable += read(kept) ? 0 : 1;
        });
        for (int i = 1; i <= 1'000; ++i) {
            const QUuid id = store.newConversation(u"m"_s).id;
            store.rename(kept, QString(i % 7 * 5'000, u'x') + QString::number(i));
            store.commit(id);
            store.deleteConversation(id);
        }
        const bool written = ::waitFor(store.savesWritten(100s), 120'000);
        ended = true;
        reader.join();
        QVERIFY(written);
        QCOMPARE(unreadable, 0);
        QCOMPARE(m_folder->entries(), QStringList{ConversationFile::name(kept)});
        QVERIFY(read(kept)->title.endsWith(u"x1000"_s));
    }

    // What failed comes with the next success, or by itself; the last that was asked for counts.
    void failuresAreTriedAgain_data()
    {
        const auto row = table<bool>("anotherSucceeds");
        row("after a success", true);
        row("after a while", false);
    }
    void failuresAreTriedAgain()
    {
        QFETCH(const bool, anotherSucceeds);
        ConversationWriter writer(anotherSucceeds ? 1h : 1ms);
        const QString obstacle = m_folder->put(u"chats"_s);
        const QString path = obstacle + u"/a.json"_s;
        const auto bytes = [](const QByteArray &text) { return [text] { return std::optional(text); }; };
        writer.write(path, bytes("old"));
        writer.write(path, bytes("new"));
        writer.write(path, [] { return std::nullopt; });
        writer.write(obstacle + u"/b.json"_s, bytes("never"));
        writer.remove(obstacle + u"/b.json"_s);
        QVERIFY(::waitFor(writer.finished(30s)));
        QVERIFY(QFile::remove(obstacle));
        if (anotherSucceeds)
            writer.write(m_folder->filePath(u"c.json"_s), bytes("c"));
        QTRY_COMPARE(m_folder->contentOf(u"chats/a.json"_s), "new"_ba);
        QVERIFY(::waitFor(writer.finished(30s)));
        QVERIFY(!QFile::exists(obstacle + u"/b.json"_s));
    }

    void savesOutliveTheStore()
    {
        auto store = std::make_unique<ChatStore>(m_folder->path());
        QVERIFY(::waitFor(store->savesWritten(0s)));
        const QUuid id = store->newConversation(u"m"_s).id;
        QCOMPARE(store->pendingSaves(), 1);
        Task<bool> waiting = store->savesWritten(30s);
        store.reset();
        QVERIFY(read(id) && ::waitFor(std::move(waiting)));
    }

    void markdown()
    {
        Conversation conversation = Conversation::make(u"qwen3:4b"_s);
        conversation.title = u"A *plan*"_s;
        conversation.messages = {ChatMessage::make(u"user"_s, u" <think>x</think>y "_s),
                                 ChatMessage::make(u"User"_s, u" Hello\n"_s),
                                 ChatMessage::make(u"assistant"_s, u"<think>b</think>c"_s)};
        conversation.messages.last().thinking = u"a"_s;
        QCOMPARE(
            ChatStore::markdown(conversation),
            u"# A *plan*\n\n_Model: qwen3:4b_\n\n"
            "## You\n\n<details><summary>Thinking</summary>\n\nx\n\n</details>\n\n <think>x</think>y \n\n"
            "## Assistant\n\nHello\n\n"
            "## Assistant\n\n<details><summary>Thinking</summary>\n\na\n\nb\n\n</details>\n\nc\n\n"_s);
    }
};

QTEST_GUILESS_MAIN(ChatStoreTest)
#include "tst_chatstore.moc"
