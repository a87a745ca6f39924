#include "support/ShownTranscript.h"
#include "support/Table.h"
#include "ui/app/EditMenu.h"
#include "ui/chat/transcript/CodeBlockBox.h"

#include <QDesktopServices>
#include <QLineEdit>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>

using namespace Qt::StringLiterals;
using Button = TranscriptButton;

namespace {

void moveHeld(ShownTranscript &shown, QPoint from, QPoint to)
{
    QTest::mousePress(shown.view.viewport(), Qt::LeftButton, {}, from);
    QTest::mouseMove(shown.view.viewport(), to);
}

void drag(ShownTranscript &shown, QPoint from, QPoint to)
{
    moveHeld(shown, from, to);
    QTest::mouseRelease(shown.view.viewport(), Qt::LeftButton, {}, to);
}

CodeBlockBox codeBlock(const ShownTranscript &shown)
{
    const TranscriptLayout &layout = shown.view.transcript();
    const MessageBody &body = *layout.item(layout.count() - 1).body();
    return {*const_cast<MessageBody &>(body).flow(MessagePart::text), 0};
}

const QString answer = u"# Title\n- **one** &amp; two\n\n```cpp\n  int a;\n\tint b;\n```\n  last line"_s;
const QString longCode = u"```\n"_s + u"0123456789"_s.repeated(50) + u"\n```\ntext"_s;

} // namespace

class TranscriptInputTest : public QObject
{
    Q_OBJECT

    const QStringList m_schemes = {u"http"_s,       u"https"_s, u"mailto"_s, u"file"_s,
                                   u"javascript"_s, u"ftp"_s,   u""_s};
    QStringList m_opened;

public Q_SLOTS:
    // Takes the place of the desktop's browser.
    void open(const QUrl &url) { m_opened += url.toString(); }

private Q_SLOTS:
    void cleanupTestCase()
    {
        for (const QString &scheme : m_schemes)
            QDesktopServices::unsetUrlHandler(scheme);
    }

    void copiesWhatIsSelected()
    {
        ShownTranscript shown;
        shown.addUsers(u"Question"_s);
        shown.addReply(answer);
        shown.show();
        QTest::keySequence(&shown.view, QKeySequence::SelectAll);
        QTest::keySequence(&shown.view, QKeySequence::Copy);
        QCOMPARE(shown.desktop.pasteboard, u"Title\n• one & two\n\n  int a;\n\tint b;\nlast line"_s);
        // From behind the item to the end of a line of code, and the other way round.
        drag(shown, shown.place(1, 1, 400), shown.place(1, 4, 400));
        QCOMPARE(shown.view.selectedText(), u"\n\n  int a;"_s);
        drag(shown, shown.place(1, 4, 400), shown.place(1, 0, 0));
        QCOMPARE(shown.view.selectedText(), u"Title\n• one & two\n\n  int a;"_s);
        // It ends where the message does, wherever the mouse goes.
        drag(shown, shown.place(0, 0, 0), QPoint(10, 395));
        QCOMPARE(shown.view.selectedText(), u"Question"_s);
        // Nothing is selected, so nothing is copied.
        shown.click(QPoint(5, 5));
        shown.desktop.pasteboard = u"kept"_s;
        QTest::keySequence(&shown.view, QKeySequence::Copy);
        QCOMPARE(shown.desktop.pasteboard, u"kept"_s);
    }

    void editMenuWorksOnTheTranscript()
    {
        ShownTranscript shown(u"**all** of it"_s);
        shown.view.activateWindow();
        shown.view.setFocus();
        QTRY_VERIFY(shown.view.hasFocus());
        EditMenu menu;
        Q_EMIT menu.aboutToShow();
        for (const QString &entry : {u"Select &All"_s, u"&Copy"_s}) {
            for (QAction *action : menu.actions()) {
                if (action->text() == entry)
                    action->trigger();
            }
        }
        QCOMPARE(shown.desktop.pasteboard, u"all of it"_s);
    }

    void selectsWordsAndLines()
    {
        ShownTranscript shown(u"first words here\nsecond line"_s);
        const QPoint place = shown.place(0, 0, 5);
        QTest::mouseDClick(shown.view.viewport(), Qt::LeftButton, {}, place);
        QCOMPARE(shown.view.selectedText(), u"first"_s);
        QTest::mouseClick(shown.view.viewport(), Qt::LeftButton, {}, place);
        QCOMPARE(shown.view.selectedText(), u"first words here"_s);
        shown.click(QPoint(5, 300));
        shown.click(shown.place(0, 0, 0));
        QTest::mouseClick(shown.view.viewport(), Qt::LeftButton, Qt::ShiftModifier, shown.place(0, 1, 500));
        QCOMPARE(shown.view.selectedText(), u"first words here\nsecond line"_s);
    }

    void selectionSurvivesStreaming()
    {
        ShownTranscript shown(answer, true);
        drag(shown, shown.place(0, 0, 0), shown.place(0, 4, 400));
        const QString selected = shown.view.selectedText();
        for (int i = 0; i < 100; ++i)
            shown.grow(u"\nmore **text**"_s);
        QCOMPARE(shown.view.selectedText(), selected);
        shown.show(false);
        QCOMPARE(shown.view.selectedText(), selected);
        // A message that is gone takes its selection along.
        shown.conversation.messages.clear();
        shown.addReply(u"another"_s);
        shown.show(false);
        QCOMPARE(shown.view.selectedText(), QString());
    }

    void selectsBeyondTheViewportAndTheCodeBlock()
    {
        ShownTranscript shown(u"line\n"_s.repeated(200) + longCode);
        const CodeBlockBox box = codeBlock(shown);
        const QPoint from = shown.place(0, 201, 15);
        moveHeld(shown, from, {2000, from.y()});
        QTRY_COMPARE(box.scrolled(), box.scrollRange());
        QVERIFY(shown.view.selectedText().size() > 450);
        const QPoint above(20, -300);
        QTest::mouseMove(shown.view.viewport(), above);
        QTRY_COMPARE(shown.view.verticalScrollBar()->value(), 0);
        QTest::mouseRelease(shown.view.viewport(), Qt::LeftButton, {}, above);
        QVERIFY(shown.view.selectedText().size() > 900);
    }

    void links_data()
    {
        const auto row = table<QStringList>("opened");
        row("[link](https://a.b/c?d=e)", {u"https://a.b/c?d=e"_s});
        row("[link](HTTP://a.b)", {u"http://a.b"_s});
        row("<mailto:x@y.z>", {u"mailto:x@y.z"_s});
        row("[link](javascript:alert(1))", {});
        row("[link](file:///etc/passwd)", {});
        row("[link](ftp://a.b)", {});
        row("[link](/relative)", {});
        row("![link](https://a.b/c.png)", {});
    }
    void links()
    {
        for (const QString &scheme : m_schemes)
            QDesktopServices::setUrlHandler(scheme, this, "open");
        m_opened.clear();
        ShownTranscript shown(QString::fromUtf8(QTest::currentDataTag()));
        QTest::mouseMove(shown.view.viewport(), shown.place(0, 0, 8));
        drag(shown, shown.place(0, 0, 4), shown.place(0, 0, 20)); // selects
        QCOMPARE(m_opened, QStringList());
        shown.click(QPoint(5, 300));
        shown.click(shown.place(0, 0, 8));
        shown.click(shown.place(0, 0, 400)); // beside it
        QTEST(m_opened, "opened");
        const QPoint onLink = shown.place(0, 0, 8);
        QHelpEvent help(QEvent::ToolTip, onLink, shown.view.viewport()->mapToGlobal(onLink));
        QCoreApplication::sendEvent(shown.view.viewport(), &help);
        if (!m_opened.isEmpty())
            QCOMPARE(QUrl(QToolTip::text()), QUrl(m_opened.first()));
        m_opened.clear();
        QTest::keyClick(&shown.view, Qt::Key_Tab); // to the link, or else to the first button
        QTest::keyClick(&shown.view, Qt::Key_Return);
        QTEST(m_opened, "opened");
    }

    void tabReachesEveryButton()
    {
        QWidget window;
        auto *const neighbour = new QLineEdit(&window);
        ShownTranscript shown(QSize(400, 200));
        shown.view.setParent(&window);
        window.show();
        shown.addReply(answer, u"hm"_s);
        shown.addMany(2);
        shown.show();
        neighbour->setFocus();
        window.activateWindow();
        QTRY_VERIFY(neighbour->hasFocus());
        // The buttons that a key goes to, and the transcript itself, until it is left.
        const auto stops = [&view = shown.view](Qt::Key key) {
            QList<std::optional<Button>> found;
            for (; view.hasFocus() && found.size() < 20; QTest::keyClick(&view, key)) {
                const std::optional<Button> button = view.focusedButton();
                const bool isInSight =
                    !button || view.viewport()->rect().contains(view.transcript().rect(*button));
                found += isInSight ? button : Button{-1};
            }
            return found;
        };
        QList<std::optional<Button>> order = {std::nullopt};
        for (const Button::Kind kind : {Button::disclosure, Button::copyCode, Button::copyAnswer})
            order += Button{0, kind, 0};
        for (const Button::Kind kind : {Button::copyCode, Button::copyAnswer, Button::regenerate})
            order += Button{2, kind, 0};
        shown.view.verticalScrollBar()->setValue(0);
        QTest::keyClick(neighbour, Qt::Key_Tab);
        QVERIFY(stops(Qt::Key_Tab) == order);
        QTest::keyClick(neighbour, Qt::Key_Backtab);
        std::reverse(order.begin(), order.end());
        QVERIFY(stops(Qt::Key_Backtab) == order);
        QVERIFY(neighbour->hasFocus());
    }

    // The button that has the keyboard goes; the transcript keeps it.
    void focusStaysWhenItsButtonGoes()
    {
        ShownTranscript shown(u"answer"_s);
        shown.view.activateWindow();
        shown.view.focusButton({0, Button::regenerate, 0});
        QTRY_VERIFY(shown.view.hasFocus());
        shown.grow(u" more"_s);
        QVERIFY(!shown.view.focusedButton());
        QVERIFY(shown.view.hasFocus());
    }

    void keysPressAndScroll()
    {
        ShownTranscript shown;
        shown.addMany(60);
        shown.addReply(longCode);
        shown.show();
        const QScrollBar *const bar = shown.view.verticalScrollBar();
        QTest::keyClick(&shown.view, Qt::Key_Home);
        QTest::keyClick(&shown.view, Qt::Key_Down);
        const int line = bar->value();
        QVERIFY(line > 0);
        QTest::keyClick(&shown.view, Qt::Key_PageDown);
        QVERIFY(bar->value() > 4 * line);
        QTest::keyClick(&shown.view, Qt::Key_PageUp);
        QTest::keyClick(&shown.view, Qt::Key_Up);
        QCOMPARE(bar->value(), 0);
        QTest::keyClick(&shown.view, Qt::Key_End);
        QCOMPARE(bar->value(), bar->maximum());

        shown.view.focusButton({shown.view.transcript().count() - 1, Button::copyCode, 0});
        QTest::keyClick(&shown.view, Qt::Key_Space);
        QCOMPARE(shown.desktop.pasteboard.size(), 500);
        QTest::keyClick(&shown.view, Qt::Key_Right);
        QVERIFY(codeBlock(shown).scrolled() > 0);
        QTest::keyClick(&shown.view, Qt::Key_Left);
        QCOMPARE(codeBlock(shown).scrolled(), 0);
    }

    void codeScrollsSideways()
    {
        ShownTranscript shown(longCode);
        const CodeBlockBox box = codeBlock(shown);
        QVERIFY(box.scrollRange() > 1000);
        const auto wheel = [&](QPoint delta, QPoint point, Qt::KeyboardModifiers modifiers) {
            QWheelEvent event(point, shown.view.viewport()->mapToGlobal(point), delta, delta, Qt::NoButton,
                              modifiers, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(shown.view.viewport(), &event);
        };
        wheel({-40, 0}, shown.place(0, 1, 50), {});
        QCOMPARE(box.scrolled(), 40);
        wheel({0, -40}, shown.place(0, 1, 50), Qt::ShiftModifier);
        QCOMPARE(box.scrolled(), 80);
        wheel({-40, 0}, shown.place(0, 1, 50), Qt::ShiftModifier);
        QCOMPARE(box.scrolled(), 120);
        wheel({500, 0}, shown.place(0, 1, 50), {});
        QCOMPARE(box.scrolled(), 0);
        const TranscriptLayout &layout = shown.view.transcript();
        const QPoint flow = layout.messageOrigin(0) + layout.item(0).body()->flowOrigin(MessagePart::text);
        const QPoint handle = flow + box.handle().center();
        drag(shown, handle, handle + QPoint(1000, 0));
        QCOMPARE(box.scrolled(), box.scrollRange());
        // What is in sight is the end of the line.
        drag(shown, shown.place(0, 1, 20), shown.place(0, 1, 540));
        QVERIFY(shown.view.selectedText().endsWith(u"6789"_s));
        QVERIFY(shown.view.selectedText().size() < 100);
    }
};

QTEST_MAIN(TranscriptInputTest)
#include "tst_transcriptinput.moc"
