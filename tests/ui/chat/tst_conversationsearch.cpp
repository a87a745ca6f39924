#include "core/chat/ChatStore.h"
#include "support/RandomText.h"
#include "support/ReferenceSearch.h"
#include "ui/chat/ConversationListModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QList<QUuid> shown(const ConversationListModel &model)
{
    QList<QUuid> ids;
    for (int row = 0; row < model.rowCount(); ++row)
        ids.append(model.idAt(model.index(row)));
    return ids;
}

void add(ChatStore &store, const QString &title, const QStringList &contents)
{
    const QUuid id = store.newConversation({}).id;
    store.mutate(id, [&](Conversation &conversation) {
        conversation.title = title;
        for (const QString &content : contents) {
            conversation.messages.append(ChatMessage::make(u"assistant"_s, content));
            conversation.messages.last().thinking = u"abc"_s; // is not searched
        }
    });
}

} // namespace

class ConversationSearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Longer, shorter and other searches, each on top of what the one before found out.
    void followsEveryEditOfTheSearchAndTheStore()
    {
        const QTemporaryDir folder;
        ChatStore store(folder.path());
        ConversationListModel model(store);
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        connect(&model, &ConversationListModel::outdated, &model, &ConversationListModel::refresh,
                Qt::QueuedConnection);
        model.refresh();
        QRandomGenerator random(3);
        RandomText letters(3, {u"a"_s, u"A"_s, u"b"_s, u"B"_s, u" "_s, u"c"_s});
        for (int count = 0; count < 30; ++count)
            add(store, letters.text(2), {letters.text(3), letters.text(3)});
        const auto rewrite = [&](Conversation &chat) { chat.messages.last().content = letters.text(3); };
        const auto begin = [](Conversation &chat) { chat.messages += ChatMessage::make(u"assistant"_s); };
        const auto grow = [&](Conversation &chat) { chat.messages.last().content += letters.text(2); };
        QString search;
        QUuid generating;
        for (int step = 0; step < 900; ++step) {
            const QUuid id = store.conversations().at(random.bounded(30)).id;
            switch (random.bounded(10)) {
            case 0:
                if (id != generating)
                    store.mutate(id, rewrite);
                break;
            case 1:
                store.touch(id);
                break;
            case 2:
                store.deleteConversation(id);
                add(store, letters.text(2), {letters.text(4)});
                break;
            case 3:
                generating = id;
                store.mutate(id, begin);
                model.setGenerating(id);
                break;
            case 4:
                store.mutate(generating, grow);
                break;
            case 5:
                store.rename(generating, letters.text(2));
                break;
            case 6:
                search = letters.text(3);
                break;
            case 7:
                search.chop(1);
                break;
            default:
                search += letters.text(1);
            }
            model.setSearch(search);
            QTRY_COMPARE(shown(model), referenceSearch(store, search.trimmed().toLower()));
        }
    }

    // While it takes several turns, the old rows stay, and what changes meanwhile counts.
    void goesOnInLaterTurns()
    {
        const QTemporaryDir folder;
        ChatStore store(folder.path());
        const QString content(100, u'e');
        for (int count = 0; count < 60; ++count)
            add(store, QString::number(count), {content, count % 20 == 0 ? u"e!"_s : u"!e"_s});
        const QUuid late = store.conversations().last().id;
        const QUuid early = store.conversations().first().id;
        ConversationListModel model(store, nullptr, {});
        model.refresh();
        const QSignalSpy outdated(&model, &ConversationListModel::outdated);
        connect(&model, &ConversationListModel::outdated, &model, &ConversationListModel::refresh);
        model.setSearch(u"E!"_s);
        QCOMPARE(model.rowCount(), 60);
        store.rename(early, u"Here!"_s);
        store.deleteConversation(late);
        add(store, u"e!"_s, {});
        QTRY_COMPARE(shown(model), referenceSearch(store, u"e!"_s));
        QCOMPARE(model.rowCount(), 4);
        QVERIFY(outdated.size() > 10);
    }
};

QTEST_GUILESS_MAIN(ConversationSearchTest)
#include "tst_conversationsearch.moc"
