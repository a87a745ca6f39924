#include "support/ShownTranscript.h"
#include "support/Table.h"
#include "ui/chat/transcript/InlineMarkdown.h"
#include "ui/chat/transcript/ParagraphLayout.h"
#include "ui/chat/transcript/TranscriptStyle.h"

#include <QScrollBar>

using namespace Qt::StringLiterals;
using Button = TranscriptButton;

class TranscriptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Which parts and buttons a message has.
    void parts_data()
    {
        const auto row = table<QString, QString, QString, bool, bool, QStringList>(
            "role", "thinking", "content", "isLast", "isGenerating", "labels");
        const QString user = u"user"_s;
        const QString reply = u"assistant"_s;
        const QString code = u"a\n```\nb\n```\n```\nc"_s;
        row("last user", user, {}, u"Hi"_s, true, false, {u"Edit"_s});
        row("last user while generating", user, {}, u"Hi"_s, true, true, {});
        row("user's text is plain", user, {}, code, false, false, {});
        row("last reply", reply, {}, u"Hi"_s, true, false, {u"Copy"_s, u"Regenerate"_s});
        row("reply while generating", reply, {}, u"Hi"_s, false, true, {u"Copy"_s});
        row("code", reply, {}, code, false, false, {u"Copy"_s, u"Copy"_s, u"Copy"_s});
        row("code arriving", reply, {}, code, true, true, {u"Copy"_s, u"Copy"_s});
        row("reasoning only", reply, u"hm"_s, {}, true, false, {u"Thinking"_s, u"Copy"_s, u"Regenerate"_s});
        row("another role", u"tool"_s, {}, u"Hi"_s, true, false, {u"Copy"_s, u"Regenerate"_s});
    }

    void parts()
    {
        QFETCH(const QString, role);
        QFETCH(const QString, thinking);
        QFETCH(const QString, content);
        QFETCH(const bool, isLast);
        QFETCH(const bool, isGenerating);
        ShownTranscript shown;
        shown.conversation.messages += ChatMessage::make(role, content);
        shown.last().thinking = thinking;
        if (!isLast)
            shown.addReply(u"later"_s);
        shown.show(isGenerating);
        QTEST(shown.labels(0), "labels");
    }

    void buttonsAct()
    {
        const QString markdown = u"**Answer**\n```sh\n  ls\n\n```"_s;
        ShownTranscript shown(markdown);
        shown.click({0, Button::copyCode, 0});
        QCOMPARE(shown.desktop.pasteboard, u"  ls\n"_s);
        shown.click({0, Button::copyAnswer, 0});
        QCOMPARE(shown.desktop.pasteboard, markdown);
        // Let go elsewhere, a button does nothing.
        const QRect button = shown.view.transcript().rect(Button{0, Button::copyCode, 0});
        QTest::mousePress(shown.view.viewport(), Qt::LeftButton, {}, button.center());
        QTest::mouseRelease(shown.view.viewport(), Qt::LeftButton, {}, QPoint(1, 1));
        QCOMPARE(shown.desktop.pasteboard, markdown);
    }

    // A code block can be copied while the rest, or the block itself, still arrives.
    void copiesArrivingCode()
    {
        ShownTranscript shown(u"```\none"_s, true);
        shown.click({0, Button::copyCode, 0});
        QCOMPARE(shown.desktop.pasteboard, u"one"_s);
        const QRect button = shown.view.transcript().rect(Button{0, Button::copyCode, 0});
        QTest::mousePress(shown.view.viewport(), Qt::LeftButton, {}, button.center());
        shown.grow(u"\ntwo\n```\nmore"_s);
        QTest::mouseRelease(shown.view.viewport(), Qt::LeftButton, {}, button.center());
        QCOMPARE(shown.desktop.pasteboard, u"one\ntwo"_s);
    }

    void reasoningKeepsItsState()
    {
        ShownTranscript shown;
        shown.addReply({}, u"first"_s);
        shown.show(true);
        QVERIFY(shown.rect(0, MessagePart::reasoning, 0).isEmpty());
        shown.click({0, Button::disclosure, 0});
        shown.settle();
        QVERIFY(!shown.rect(0, MessagePart::reasoning, 0).isEmpty());
        shown.last().thinking += u"\nsecond"_s;
        shown.show(true);
        QVERIFY(!shown.rect(0, MessagePart::reasoning, 1).isEmpty());
        shown.grow(u"answer"_s);
        QCOMPARE(shown.view.messageText(0), u"first\nsecond\nanswer"_s);
        shown.show(false);
        QVERIFY(!shown.rect(0, MessagePart::reasoning, 1).isEmpty());
        shown.click({0, Button::disclosure, 0});
        shown.settle();
        QCOMPARE(shown.view.messageText(0), u"answer"_s);
    }

    void followsTheReply()
    {
        ShownTranscript shown;
        shown.addMany(300);
        shown.show();
        const QScrollBar *const bar = shown.view.verticalScrollBar();
        QCOMPARE(bar->value(), bar->maximum());
        shown.addUsers(u"More"_s);
        shown.addReply({});
        shown.show(true);
        for (int i = 0; i < 20; ++i) {
            shown.grow(u"word word word\n"_s);
            QCOMPARE(bar->value(), bar->maximum());
        }
        // Scrolling back lasts until the next chunk.
        QTest::keyClick(&shown.view, Qt::Key_PageUp);
        QVERIFY(bar->value() < bar->maximum());
        shown.grow(u"x"_s);
        QCOMPARE(bar->value(), bar->maximum());
        QTest::keyClick(&shown.view, Qt::Key_PageUp);
        const int place = bar->value();
        shown.show(false);
        QCOMPARE(bar->value(), place);
    }

    void codeIsAsLargeAsItsHeading()
    {
        const TranscriptStyle style(QApplication::palette());
        const auto widthIn = [&style](const QFont &font) {
            ParagraphLayout layout({font, style.codeInline, style.link}, 10'000);
            layout.setText(inlineMarkdown(u"`mmmmmmmmmm`"_s));
            return layout.naturalWidth();
        };
        QVERIFY(widthIn(style.title2) > widthIn(style.title3));
        QVERIFY(widthIn(style.title3) > widthIn(style.body));
    }

    void waitsWhileAButtonIsHeld()
    {
        for (const bool onBar : {false, true}) {
            ShownTranscript shown;
            shown.addMany(20);
            shown.addReply(u"text"_s);
            shown.show(true);
            QScrollBar *const bar = shown.view.verticalScrollBar();
            QWidget *const held = onBar ? static_cast<QWidget *>(bar) : shown.view.viewport();
            const QPoint point = held->rect().center();
            QTest::mousePress(held, Qt::LeftButton, {}, point);
            const int place = bar->value();
            const int end = bar->maximum();
            for (int i = 0; i < 10; ++i)
                shown.grow(u"\nmore"_s);
            QVERIFY(bar->maximum() > end);
            QCOMPARE(bar->value(), place);
            QTest::mouseRelease(held, Qt::LeftButton, {}, point);
            shown.settle();
            QCOMPARE(bar->value(), bar->maximum());
            if (!onBar)
                continue;
            // The bar's own menu takes the release.
            QTest::mousePress(bar, Qt::RightButton, {}, point);
            shown.grow(u"\nmore"_s);
            QCOMPARE(bar->value(), bar->maximum());
        }
    }

    // Heights that turn out to be wrong must not move what is in sight.
    void scrollsWithoutJumps()
    {
        ShownTranscript shown(QSize(500, 300));
        shown.addMany(200);
        shown.addReply(
            u"A paragraph of some length, which is shorter or longer than guessed.\n\n"_s.repeated(200));
        shown.addMany(20);
        shown.show();
        QScrollBar *const bar = shown.view.verticalScrollBar();
        const TranscriptLayout &layout = shown.view.transcript();
        constexpr int step = 37;
        for (int i = 0; i < 400 && layout.top() > step; ++i) {
            const std::vector<VisibleRow> before = layout.visible();
            bar->setValue(bar->value() - step);
            for (const VisibleRow &row : before)
                QCOMPARE(layout.rect(row.address).value().top(), row.rect.top() + step);
        }
        // Nor does a place far away shift once it is shown.
        bar->setValue(bar->maximum() / 3);
        const VisibleRow first = layout.visible().front();
        shown.settle();
        QCOMPARE(layout.rect(first.address).value().top(), first.rect.top());
        bar->setValue(0);
        QCOMPARE(shown.rect(0, MessagePart::text, 0).top(), TranscriptStyle::margin);
    }

    // Another width or another font moves neither the end nor the row at the top out of its place.
    void keepsItsPlace()
    {
        ShownTranscript shown;
        shown.addMany(100);
        shown.show();
        const QScrollBar *const bar = shown.view.verticalScrollBar();
        shown.view.resize(300, 350);
        shown.settle();
        QCOMPARE(bar->value(), bar->maximum());
        // Rows that are narrower have more lines: of those, a few may be in sight, or the last one alone.
        const int middle = bar->maximum() / 2;
        RowAddress first;
        for (int step = 0; step < 12; ++step) {
            shown.view.resize(300, 350);
            shown.settle();
            shown.view.verticalScrollBar()->setValue(middle + 9 * step);
            first = shown.view.transcript().visible().front().address;
            shown.view.resize(700, 350);
            shown.settle();
            QCOMPARE(shown.view.transcript().visible().front().address, first);
        }
        QFont font = QApplication::font();
        font.setPointSizeF(2 * font.pointSizeF());
        const int end = bar->maximum();
        QApplication::setFont(font);
        QTRY_VERIFY(bar->maximum() > end);
        QCOMPARE(shown.view.transcript().visible().front().address, first);
        QApplication::setFont(QFont());
    }

    void anotherTextSize()
    {
        ShownTranscript shown;
        shown.addMany(2);
        shown.addReply(u"word "_s.repeated(700));
        shown.show();
        QScrollBar *const bar = shown.view.verticalScrollBar();
        bar->setValue(bar->maximum() / 2);
        // Of the long text, whose lines are all alike.
        const auto shareAboveTop = [&shown] {
            shown.settle();
            const QRect place = shown.rect(2, MessagePart::text, 0);
            return -static_cast<double>(place.top()) / place.height();
        };
        const double before = shareAboveTop();
        QVERIFY(before > 0.2 && before < 0.8);
        for (const double scale : {3.0, 0.7, 2.0}) {
            shown.view.setTextScale(scale);
            QVERIFY(qAbs(shareAboveTop() - before) < 0.01);
        }
        bar->setValue(bar->maximum());
        ShownTranscript fresh;
        fresh.view.setTextScale(2);
        fresh.conversation = shown.conversation;
        fresh.show();
        QCOMPARE(shown.settle(), fresh.settle());
    }

    // However strange a text is, it is shown from its end, and every character of it is there.
    void awkwardTexts_data()
    {
        const auto row = table<QString, QString>("text", "expectedEnd");
        row("long word", u"w"_s.repeated(200'000) + u"end"_s, u"wwend"_s);
        row("long code line", u"```\n"_s + u"0123456789"_s.repeated(20'000) + u"end"_s, u"789end"_s);
        row("fences", u"```\nx\n```\n"_s.repeated(10'000) + u"end"_s, u"x\nend"_s);
        row("lines", u"a\n"_s.repeated(40'000) + u"end"_s, u"a\nend"_s);
        row("brackets", u"["_s.repeated(100'000) + u"end"_s, u"[[end"_s);
        row("emoji", u"\U0001f468\u200d\U0001f469\u200d\U0001f467"_s.repeated(5'000), u"\U0001f467"_s);
        row("right to left", u"שלום "_s.repeated(10'000) + u"סוף"_s, u"שלום סוף"_s);
        row("carriage returns", u"a\r\nb\r\nend"_s, u"a\nb\nend"_s);
    }
    void awkwardTexts()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, expectedEnd);
        ShownTranscript shown(text);
        QScrollBar *const bar = shown.view.verticalScrollBar();
        QCOMPARE(bar->value(), bar->maximum());
        QVERIFY(shown.view.messageText(0).endsWith(expectedEnd));
        bar->setValue(bar->maximum() / 2);
        shown.view.resize(350, 300);
        shown.settle();
        QVERIFY(!shown.view.transcript().visible().empty());
    }

    // A line that is laid out in several rows is one line to whoever copies it.
    void longLines()
    {
        const QString words = u"some  words, "_s.repeated(2'000) + u"end"_s;
        for (const QString &mark : {u""_s, u"- "_s, u"# "_s}) {
            ShownTranscript shown(mark + words);
            QCOMPARE(shown.view.messageText(0), mark == u"- "_s ? u"• "_s + words : words);
        }
        ShownTranscript shown;
        shown.addUsers(words + u"\n"_s + words);
        shown.show();
        QCOMPARE(shown.view.messageText(0), shown.last().content);
    }

    // What takes no room of its own would all be in sight, and laid out, at once.
    void pilesTakeRoom()
    {
        for (const QString &pile : {u"\u0301"_s, u"\u200b"_s, u"\U000e0067"_s}) {
            const QString text = u'a' + pile.repeated(3'000 / pile.size());
            ShownTranscript shown(text);
            QVERIFY(shown.rect(0, MessagePart::text, 0).height() > 10 * QFontMetrics(QFont()).height());
            QCOMPARE(shown.view.messageText(0), text);
        }
    }

    // Of a text beyond measure the beginning shows, and says so; it is copied whole.
    void endlessTexts_data()
    {
        const auto row = table<QString>("text");
        row("words", u"word "_s.repeated(300'000) + u"end"_s);
        row("lines", u"a\n"_s.repeated(60'000) + u"end"_s);
        row("code", u"```\n"_s + u"x"_s.repeated(600'000));
    }
    void endlessTexts()
    {
        QFETCH(const QString, text);
        ShownTranscript shown;
        shown.addUsers(text);
        shown.addReply(text);
        shown.show();
        for (const int message : {0, 1}) {
            QVERIFY(shown.view.messageText(message).size() < text.size());
            QVERIFY(!shown.rect(message, MessagePart::notice, 0).isEmpty());
        }
        shown.view.press({1, TranscriptButton::copyAnswer, 0});
        QCOMPARE(shown.desktop.pasteboard, text);
        shown.desktop.pasteboard.clear();
        shown.view.selectAll();
        shown.view.copy();
        QCOMPARE(shown.desktop.pasteboard, text);
    }
};

QTEST_MAIN(TranscriptTest)
#include "tst_transcript.moc"
