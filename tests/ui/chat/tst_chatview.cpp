#include "support/AppUnderTest.h"
#include "support/InputMethod.h"
#include "support/MessageList.h"
#include "ui/chat/ChatPane.h"
#include "ui/chat/ChatView.h"
#include "ui/chat/MessageInput.h"
#include "ui/chat/ModelSettingsView.h"
#include "ui/chat/RenameDialog.h"
#include "ui/chat/TextZoom.h"
#include "ui/widgets/RowListView.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace {

struct ChatScreen : AppUnderTest
{
    explicit ChatScreen(std::chrono::milliseconds longWait = std::chrono::hours(1))
        : AppUnderTest({{u"DEMO_ENGINE_INSTALLED"_s, u"gemma3:4b,qwen3:4b"_s}}, longWait)
    {
        view.resize(930, 620);
        view.show();
        if (!QTest::qWaitForWindowActive(&view))
            qFatal("The chats do not show");
    }

    // Selects a new conversation.
    QUuid open(const QString &model = u"gemma3:4b"_s)
    {
        const QUuid id = newConversation(model);
        const auto isOpen = [&] {
            const auto *pane = view.findChild<ChatPane *>();
            return pane && pane->id() == id && input();
        };
        if (!QTest::qWaitFor(isOpen))
            qFatal("The conversation does not show");
        return id;
    }
    void setModel(const QUuid &id, const QString &model)
    {
        chats().mutate(id, [&model](Conversation &chat) { chat.model = model; });
    }

    ChatStore &chats() { return (*this)->chats(); }
    ChatMessage lastMessage() { return chats().conversations().first().messages.last(); }
    MessageInput *input() const { return onscreen::find<MessageInput>(&view, u"Message"_s); }
    RowListView *list() const { return view.findChild<RowListView *>(); }
    void say(const QString &text) const
    {
        QTest::keyClicks(input(), text);
        QTest::keyClick(input(), Qt::Key_Return);
    }
    QStringList titles() const
    {
        QStringList titles;
        for (int row = 0; row < list()->model()->rowCount(); ++row)
            titles.append(list()->model()->index(row, 0).data().toString());
        return titles;
    }
    QString selectedTitle() const
    {
        return list()->selectionModel()->selectedIndexes().value(0).data().toString();
    }

    ChatView view{**this, desktop, sandbox.defaults()};
};

} // namespace

class ChatViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fromNothingToAnAnswer()
    {
        ChatScreen app;
        onscreen::click(&app.view, u"New chat"_s);
        QTRY_VERIFY(messages::list(&app.view));
        QCOMPARE(messages::list(&app.view)->accessibleDescription(),
                 u"Say hello. Everything stays on this Mac."_s);
        QTRY_COMPARE(QApplication::focusWidget(), app.input());
        QVERIFY(!onscreen::find(&app.view, u"Send"_s)->isEnabled());

        app.setPace("{\"loadMs\":60000}");
        QTest::keyClicks(app.input(), u"What is <b>this</b>?"_s);
        onscreen::click(&app.view, u"Send"_s);
        QTRY_COMPARE(messages::status(&app.view), u"Waiting for the model…"_s);
        QCOMPARE(messages::list(&app.view)->accessibleDescription(), QString());
        QCOMPARE(messages::texts(&app.view), (QStringList{u"You: What is <b>this</b>?"_s, u"Assistant: "_s}));
        QTRY_COMPARE(app.titles(), QStringList(u"What is <b>this</b>?"_s));
        app.say(u"Next"_s);
        QCOMPARE(app.input()->toPlainText(), u"Next"_s);
        QTest::keyClick(app.input(), Qt::Key_Escape);
        QTRY_VERIFY(messages::offers(&app.view, u"Edit"_s));
        messages::click(&app.view, u"Edit"_s);
        QCOMPARE(app.input()->draft(), u"What is <b>this</b>?\n\nNext"_s);
        QTRY_VERIFY(messages::texts(&app.view).isEmpty());
        app.input()->clear();

        app.setPace("{\"loadMs\":0}");
        app.say(u"echo **Yes**"_s);
        QTRY_VERIFY(messages::offers(&app.view, u"Regenerate"_s));
        QCOMPARE(messages::lastText(&app.view), u"Assistant: Yes"_s);
        const ChatMessage first = app.lastMessage();
        QCOMPARE(messages::status(&app.view), u"%1 tokens/s"_s.arg(*first.tokensPerSecond, 0, 'f', 1));

        messages::click(&app.view, u"Regenerate"_s);
        QTRY_VERIFY(!app->generatingID() && messages::offers(&app.view, u"Regenerate"_s));
        QVERIFY(app.lastMessage().id != first.id);
        QCOMPARE(messages::texts(&app.view).size(), 2);
    }

    void saysThatTheModelLoads()
    {
        ChatScreen app(std::chrono::milliseconds(1));
        app.demo.setFaults(u"chat:stall-early"_s);
        app.open();
        app.say(u"Hello"_s);
        QTRY_COMPARE(messages::status(&app.view), u"Loading the model into memory…"_s);
        app.demo.setFaults({});
        app.loadModel(u"gemma3:4b"_s);
        QTRY_COMPARE(messages::status(&app.view), u"Waiting for the model…"_s);
        onscreen::click(&app.view, u"Stop"_s);
        QTRY_VERIFY(!app->generatingID() && !app->isLoadingModel());
    }

    void reasonsUntilItIsStopped()
    {
        ChatScreen app;
        app.setPace("{\"chunkMs\":15}");
        app.open(u"qwen3:4b"_s);
        QTRY_VERIFY(onscreen::shows(&app.view, u"Think"_s));
        app.say(u"repeat 1000 word"_s);
        QTRY_COMPARE(messages::status(&app.view), u"Thinking…"_s);
        QCOMPARE(messages::lastText(&app.view), u"Assistant: "_s);
        QTRY_VERIFY(messages::lastText(&app.view).startsWith(u"Assistant: word"_s));
        QCOMPARE(messages::status(&app.view), QString());
        onscreen::click(&app.view, u"Stop"_s);
        QTRY_VERIFY(messages::offers(&app.view, u"Regenerate"_s));
        const ParsedMessage kept = app.lastMessage().parsed();
        QCOMPARE(messages::lastText(&app.view), u"Assistant: "_s + kept.answer);
        messages::click(&app.view, u"Thinking"_s);
        QCOMPARE(messages::lastText(&app.view),
                 u"Assistant: "_s + kept.thinking.trimmed() + u'\n' + kept.answer);
        QCOMPARE(app->banner(), std::nullopt);
    }

    void everyChatHasItsOwnDraftAndReply()
    {
        ChatScreen app;
        app.setPace("{\"loadMs\":60000}");
        const QUuid busy = app.open();
        const QUuid idle = app.open();
        app->send(u"Hello"_s, busy);
        app.say(u"And me?"_s);
        QCOMPARE(app.input()->toPlainText(), u"And me?"_s);
        QVERIFY(app.contents(idle).isEmpty() && app->banner());

        // A draft of spaces is not sent, and survives while the chats are not shown.
        app.input()->setDraft(u" \n "_s);
        QTest::keyClick(app.input(), Qt::Key_Return);
        QTest::keyClicks(app.input(), u"draft"_s);
        app.view.hide();
        app.chats().rename(idle, u"Renamed meanwhile"_s);
        app.view.show();
        QTRY_COMPARE(app.selectedTitle(), u"Renamed meanwhile"_s);
        QCOMPARE(app.input()->toPlainText(), u" \n draft"_s);
        QTest::keyClick(app.list(), Qt::Key_Down);
        QTRY_VERIFY(onscreen::shows(&app.view, u"Stop"_s));
        QVERIFY(app.input()->toPlainText().isEmpty());
        app.chats().setSelectedID(idle);
        QTRY_VERIFY(app.input() && app.input()->draft() == u" \n draft"_s);
        app.chats().setSelectedID(busy);
        QTRY_VERIFY(onscreen::shows(&app.view, u"Stop"_s));

        // Escape that an input method may want ends no reply.
        inputmethod::compose(app.input(), u"にほん"_s);
        QTest::keyClick(app.input(), Qt::Key_Escape);
        inputmethod::commit(app.input(), u"にほん"_s);
        QVERIFY(onscreen::shows(&app.view, u"Stop"_s));
        QTest::keyClick(app.list(), Qt::Key_Escape);
        QTRY_VERIFY(!app->generatingID());
    }

    void textSize()
    {
        ChatScreen app;
        app.open();
        app.say(u"Hello"_s);
        QTRY_VERIFY(!app->generatingID());
        const auto turn = [&app](int eighths, Qt::KeyboardModifier modifier) {
            QWidget *const viewport = messages::list(&app.view)->viewport();
            QWheelEvent wheel(QPointF(9, 9), viewport->mapToGlobal(QPointF(9, 9)), {}, {0, eighths}, {},
                              modifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(viewport, &wheel);
            return QFontMetrics(app.input()->font()).height();
        };
        const int usual = turn(0, Qt::ControlModifier);
        QCOMPARE(turn(120, Qt::NoModifier), usual);
        QCOMPARE(turn(80, Qt::ControlModifier), usual);
        QVERIFY(turn(40, Qt::ControlModifier) > usual);
        QVERIFY(turn(-240, Qt::ControlModifier) < usual);

        // It is kept, within its bounds, and holds for every chat.
        for (const auto &[stored, factor] : {std::pair(-7, 0.7), {137, 1.37}, {1'000'000, 3.0}}) {
            app.sandbox.defaults().set(u"textSize"_s, stored);
            QCOMPARE(TextZoom(app.sandbox.defaults()).factor(), factor);
        }
        app.open();
        QVERIFY(turn(0, Qt::ControlModifier) > 2 * usual);
        TextZoom zoom(app.sandbox.defaults());
        zoom.grow();
        QVERIFY(zoom.isLargest());
        zoom.reset();
        QCOMPARE(turn(0, Qt::ControlModifier), usual);
    }

    void searchFindsTitlesAndMessages()
    {
        ChatScreen app;
        app.chats().rename(app.open(), u"Nothing"_s);
        const QUuid monday = app.open();
        app.chats().mutate(monday, [](Conversation &conversation) {
            conversation.title = u"Monday"_s;
            conversation.messages += ChatMessage::make(u"assistant"_s, u"I was PLANNING it"_s);
        });
        app.chats().rename(app.open(), u"Trip plan"_s);
        auto *search = onscreen::find<QLineEdit>(&app.view, u"Search chats"_s);
        QTest::keyClicks(search, u"  PLAN "_s);
        QTRY_COMPARE(app.titles(), (QStringList{u"Trip plan"_s, u"Monday"_s}));
        QCOMPARE(app.selectedTitle(), u"Trip plan"_s);

        // The row that goes takes its highlight along, and no other gets it.
        search->setText(u"monday"_s);
        QTRY_COMPARE(app.titles(), QStringList{u"Monday"_s});
        QCOMPARE(app.selectedTitle(), QString());
        search->setText(u"plan"_s);
        QTRY_COMPARE(app.selectedTitle(), u"Trip plan"_s);

        // What streams in can change what is found, and nobody else's selection.
        app.chats().mutate(monday, [](Conversation &conversation) { conversation.messages.clear(); });
        QTRY_COMPARE(app.titles(), QStringList{u"Trip plan"_s});
        search->setText(u"   "_s);
        QTRY_COMPARE(app.titles().size(), 3);
        QTRY_COMPARE(app.selectedTitle(), u"Trip plan"_s);
    }

    void renameAndDeleteFromTheMenu()
    {
        ChatScreen app;
        app.chats().rename(app.open(), u"Below & beneath"_s);
        const QUuid above = app.open();
        const auto choose = [&](int row, const QString &entry) {
            const QPoint place = app.list()->visualRect(app.list()->model()->index(row, 0)).center();
            QTest::mouseClick(app.list()->viewport(), Qt::RightButton, {}, place);
            QCOMPARE(app.chats().selectedID(), above);
            Q_EMIT app.list()->customContextMenuRequested(place);
            const auto *menu = app.view.findChild<QMenu *>();
            for (QAction *action : menu->actions()) {
                if (action->text() == entry)
                    action->trigger();
            }
            delete menu;
        };
        choose(0, u"Rename…"_s);
        const QPointer<RenameDialog> dialog = app.view.findChild<RenameDialog *>();
        auto *title = onscreen::find<QLineEdit>(dialog, u"Title"_s);
        QCOMPARE(title->text(), u"New chat"_s);
        QTest::keyClicks(title, u"Above"_s);
        QTest::keyClick(title, Qt::Key_Return);
        QTRY_VERIFY(!dialog);
        QTRY_COMPARE(app.titles(), (QStringList{u"Above"_s, u"Below & beneath"_s}));

        choose(1, u"Delete"_s);
        QTRY_COMPARE(app.titles(), QStringList{u"Above"_s});
        QCOMPARE(app.chats().selectedID(), above);
        onscreen::click(&app.view, u"Export as Markdown"_s);
        QTRY_COMPARE(app.desktop.asked, QStringList{u"Above.md"_s});
        onscreen::click(&app.view, u"Delete this chat"_s);
        QTRY_VERIFY(onscreen::shows(&app.view, u"No chat selected"_s));
    }

    void headerFollowsTheModel()
    {
        ChatScreen app;
        const QUuid id = app.open(u"gone:1b"_s);
        auto *const picker = onscreen::find<QComboBox>(&app.view, u"Model"_s);
        QCOMPARE(picker->currentText(), u"gone:1b"_s);
        QCOMPARE(picker->count(), 3);
        onscreen::click(&app.view, u"Settings for this model"_s);
        const QPointer<ModelSettingsView> sheet = app.view.findChild<ModelSettingsView *>();
        QVERIFY(onscreen::shows(sheet, u"Settings for gone:1b"_s));
        onscreen::click(sheet, u"Done"_s);
        QTRY_VERIFY(!sheet);
        app.setModel(id, u"QWEN3:4b"_s);
        QTRY_COMPARE(picker->currentText(), u"qwen3:4b"_s);
        QCOMPARE(picker->count(), 2);
        app.setModel(id, u"qwen3:4b"_s);
        QTRY_VERIFY(onscreen::shows(&app.view, u"Think"_s));
        onscreen::click(&app.view, u"Think"_s);
        QVERIFY(!app.chats().find(id)->think);
        app.chats().mutate(id, [](Conversation &conversation) { conversation.think = true; });
        QTRY_VERIFY(onscreen::find<QAbstractButton>(&app.view, u"Think"_s)->isChecked());

        app.setModel(id, u"gemma3:4b"_s);
        QTRY_VERIFY(app->capabilities().contains(u"gemma3:4b"_s) && !onscreen::shows(&app.view, u"Think"_s));

        app.setModel(id, {});
        QTRY_COMPARE(picker->currentText(), u"Choose a model"_s);
        QTest::keyClicks(app.input(), u"Hello"_s);
        for (const QString &button : {u"Send"_s, u"Settings for this model"_s})
            QVERIFY(!onscreen::find(&app.view, button)->isEnabled());
        Q_EMIT picker->activated(0);
        QCOMPARE(app.chats().find(id)->model, QString());
        QTest::keyClick(picker, Qt::Key_Down);
        QVERIFY(app->isInstalled(app.chats().find(id)->model));
        QTRY_VERIFY(onscreen::find(&app.view, u"Send"_s)->isEnabled());
    }
};

QTEST_MAIN(ChatViewTest)
#include "tst_chatview.moc"
