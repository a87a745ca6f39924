#include "support/ShownTranscript.h"

#include <QAccessible>
#include <QTest>

using namespace Qt::StringLiterals;
using Button = TranscriptButton;

// The painted messages and buttons as assistive programs find them.
class TranscriptAccessibleTest : public QObject
{
    Q_OBJECT

private:
    static QAccessibleInterface *list(ShownTranscript &shown)
    {
        return QAccessible::queryAccessibleInterface(&shown.view);
    }

    static QStringList names(QAccessibleInterface *parent)
    {
        QStringList names;
        for (int i = 0; i < parent->childCount(); ++i)
            names += parent->child(i)->text(QAccessible::Name);
        return names;
    }

    static void press(QAccessibleInterface *button)
    {
        button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }

private Q_SLOTS:
    void tree()
    {
        ShownTranscript shown;
        shown.addUsers(u"A *question*"_s);
        shown.addReply(u"**Bold** [*a* link](https://a.b) [file](file:///a)\n```\ncode\n```"_s, u"plan"_s);
        shown.show();
        QCOMPARE(list(shown)->role(), QAccessible::List);
        QCOMPARE(names(list(shown)),
                 QStringList({u"You: A *question*"_s, u"Assistant: Bold a link file\ncode"_s}));
        QAccessibleInterface *const reply = list(shown)->child(1);
        QCOMPARE(reply->role(), QAccessible::ListItem);
        QCOMPARE(reply->parent(), list(shown));
        QCOMPARE(list(shown)->indexOfChild(reply), 1);
        QCOMPARE(names(reply),
                 QStringList({u"Thinking"_s, u"a link"_s, u"Copy"_s, u"Copy"_s, u"Regenerate"_s}));
        QAccessibleInterface *const link = reply->child(1);
        QCOMPARE(link->role(), QAccessible::Link);
        QCOMPARE(link->text(QAccessible::Description), u"https://a.b"_s);
        QCOMPARE(reply->childAt(link->rect().center().x(), link->rect().center().y()), link);
        QAccessibleInterface *const code = reply->child(2);
        QCOMPARE(code->role(), QAccessible::Button);
        QCOMPARE(code->parent(), reply);
        QCOMPARE(reply->indexOfChild(code), 2);
        const QPoint middle = code->rect().center();
        QCOMPARE(list(shown)->childAt(middle.x(), middle.y()), reply);
        QCOMPARE(reply->childAt(middle.x(), middle.y()), code);
        QAccessibleTextInterface *const text = reply->textInterface();
        QCOMPARE(text->text(0, 4), u"Bold"_s);
        QCOMPARE(text->characterCount(), 21);
    }

    void buttonsAct()
    {
        ShownTranscript shown;
        shown.addReply(u"answer"_s, u"plan"_s);
        shown.show();
        QAccessibleInterface *const reply = list(shown)->child(0);
        QVERIFY(reply->child(0)->state().collapsed);
        press(reply->child(0));
        shown.settle();
        QVERIFY(reply->child(0)->state().expanded);
        QCOMPARE(reply->text(QAccessible::Value), u"plan\nanswer"_s);
        press(reply->child(1));
        QCOMPARE(shown.desktop.pasteboard, u"answer"_s);
        reply->child(2)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
        QVERIFY(shown.view.focusedButton() == Button({0, Button::regenerate, 0}));
    }

    // What an assistive program still holds may be gone.
    void changes()
    {
        ShownTranscript shown;
        shown.addReply(u"one"_s);
        shown.addReply(u"two"_s);
        shown.show();
        QAccessibleInterface *const two = list(shown)->child(1);
        QAccessibleInterface *const regenerate = two->child(1);
        QVERIFY(two->isValid() && regenerate->isValid());
        shown.grow(u" more"_s);
        QCOMPARE(two->text(QAccessible::Value), u"two more"_s);
        QVERIFY(!regenerate->isValid());
        QCOMPARE(two->childCount(), 0);
        shown.conversation.messages.removeLast();
        shown.show();
        QVERIFY(!two->isValid());
        QCOMPARE(two->childCount(), 0);
        QVERIFY(!list(shown)->child(1));
    }
};

QTEST_MAIN(TranscriptAccessibleTest)
#include "tst_transcriptaccessible.moc"
