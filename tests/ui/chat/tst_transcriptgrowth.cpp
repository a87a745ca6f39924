#include "support/RandomText.h"
#include "support/ShownTranscript.h"
#include "support/Table.h"

using namespace Qt::StringLiterals;

namespace {

const QString longWords = u"long "_s.repeated(30);
const QString unbroken = u"unbroken"_s.repeated(20);
const QStringList pieces = {
    u"\n"_s, u"\n"_s,    u"\n```"_s,         u"```"_s,  u"`"_s,       u" "_s,          u"word "_s, u"**"_s,
    u"*"_s,  u"- "_s,    u"\n# "_s,          u"~~"_s,   u"<think>"_s, u"</think>"_s,   u"<b>"_s,   u"&amp;"_s,
    u"\t"_s, u"שלום "_s, u"[a](http://b)"_s, longWords, unbroken,     u"é\U0001f600"_s};

} // namespace

// What is on the screen while a reply arrives is what a fresh rendering of the same text would show.
class TranscriptGrowthTest : public QObject
{
    Q_OBJECT

private:
    static void compareWithFresh(ShownTranscript &growing, ShownTranscript &fresh, bool isGenerating)
    {
        fresh.conversation = growing.conversation;
        fresh.conversation.id = QUuid::createUuid();
        fresh.show(isGenerating);
        for (int i = 0; i < growing.view.transcript().count(); ++i) {
            if (growing.view.transcript().item(i).facts().isOpen)
                fresh.view.press({i, TranscriptButton::disclosure, 0});
            QCOMPARE(growing.view.messageText(i), fresh.view.messageText(i));
        }
        // The ring turns until there is an answer.
        if (!growing.last().parsed().answer.isEmpty())
            QCOMPARE(growing.settle(), fresh.settle());
    }

private Q_SLOTS:
    void randomTexts_data()
    {
        const auto row = table<QSize, bool>("size", "isOpen");
        row("all in sight", QSize(500, 1200), false);
        row("with the reasoning", QSize(500, 1200), true);
        row("end in sight", QSize(350, 300), false);
    }
    void randomTexts()
    {
        QFETCH(const QSize, size);
        QFETCH(const bool, isOpen);
        ShownTranscript growing(size);
        ShownTranscript fresh(size);
        for (quint32 seed = 1; seed <= 12; ++seed) {
            RandomText random(seed, pieces);
            growing.conversation = Conversation::make({});
            growing.addUsers(random.text(5));
            growing.addReply({});
            const QString content = random.text(60);
            const QString thinking = seed % 3 == 0 ? random.text(8) : QString();
            growing.show(true);
            if (isOpen)
                growing.view.press({1, TranscriptButton::disclosure, 0});
            // All of the reasoning comes first, and neither is ever taken back.
            for (const qsizetype cut : random.cuts(thinking.size() + content.size())) {
                ChatMessage &reply = growing.last();
                reply.thinking = thinking.first(std::clamp(cut, reply.thinking.size(), thinking.size()));
                const qsizetype arrived = std::max(cut - reply.thinking.size(), reply.content.size());
                reply.content = content.first(std::min(arrived, content.size()));
                growing.show(true);
                if (cut % 7 == 0)
                    compareWithFresh(growing, fresh, true);
            }
            growing.show(false);
            compareWithFresh(growing, fresh, false);
        }
    }

    // A paragraph too long to be laid out as a whole.
    void longLine_data()
    {
        const auto row = table<QString, QString>("start", "piece");
        row("unbroken", {}, u"0123456789"_s);
        row("styled", {}, u"**bold** `code` [link](http://a.b) "_s);
        row("right to left", {}, u"שלום עולם "_s);
        row("surrogates", {}, u"\U0001f600\U0001f601"_s);
        row("code", u"```\n"_s, u"0123456789 "_s);
    }
    void longLine()
    {
        QFETCH(const QString, start);
        QFETCH(const QString, piece);
        ShownTranscript growing(QSize(500, 6000));
        ShownTranscript fresh(QSize(500, 6000));
        growing.addReply(start);
        for (int i = 0; i < 20; ++i) {
            growing.grow(piece.repeated(40));
            if (i % 10 == 9)
                compareWithFresh(growing, fresh, true);
        }
    }

    // Only what has changed is painted, and that must leave the same picture as painting everything.
    void partialPainting()
    {
        ShownTranscript shown(QSize(400, 300));
        QVERIFY(QTest::qWaitForWindowExposed(&shown.view));
        shown.addMany(20);
        shown.addReply({});
        RandomText random(1, pieces);
        const auto onScreen = [&view = shown.view] { return view.screen()->grabWindow(view.winId()); };
        for (int i = 0; i < 60; ++i) {
            shown.last().content += random.text(3);
            shown.view.showConversation(shown.conversation, true);
            QTRY_VERIFY(shown.view.isSettled());
            QCoreApplication::sendPostedEvents();
            const QPixmap partly = onScreen();
            QVERIFY(!partly.isNull());
            shown.view.repaint();
            shown.view.viewport()->repaint();
            QCOMPARE(partly, onScreen());
        }
    }
};

QTEST_MAIN(TranscriptGrowthTest)
#include "tst_transcriptgrowth.moc"
