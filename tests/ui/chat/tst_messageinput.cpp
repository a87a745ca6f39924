#include "support/InputMethod.h"
#include "ui/chat/MessageInput.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>

using namespace Qt::StringLiterals;

class MessageInputTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnSendsAndNothingElseDoes()
    {
        MessageInput field;
        int submitted = 0;
        connect(&field, &MessageInput::submitted, this, [&submitted] { ++submitted; });
        field.show();
        QTest::keyClicks(&field, u"one"_s);
        QTest::keyClick(&field, Qt::Key_Return, Qt::ShiftModifier);
        QTest::keyClicks(&field, u"two"_s);
        inputmethod::compose(&field, u"にほん"_s);
        QTest::keyClick(&field, Qt::Key_Return);
        inputmethod::commit(&field, u"にほん"_s);
        QCOMPARE(field.toPlainText(), u"one\ntwoにほん"_s);
        QCOMPARE(submitted, 0);
        QTest::keyClick(&field, Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(submitted, 1);
    }

    void growsToEightLines()
    {
        MessageInput field;
        field.show();
        const int one = field.height();
        const auto heightOf = [&field](int lines) {
            field.setPlainText(QString(lines - 1, u'\n'));
            return field.height();
        };
        const int line = heightOf(2) - one;
        QVERIFY(line > 8);
        QVERIFY(qAbs(heightOf(8) - one - 7 * line) <= 7);
        QCOMPARE(heightOf(9), heightOf(8));
        QCOMPARE(heightOf(1), one);
        field.resize(200, one);
        field.setPlainText(u"A long line breaks by itself and counts as the lines that it takes."_s);
        QVERIFY(field.height() > one);
    }

    void pastesPlainText()
    {
        auto *const copied = new QMimeData;
        copied->setHtml(u"<h1>Big</h1><img src='x.png'>"_s);
        copied->setText(u"Big\u00a0<b>\n"_s);
        QGuiApplication::clipboard()->setMimeData(copied);
        MessageInput field;
        field.paste();
        QGuiApplication::clipboard()->setMimeData(new QMimeData);
        field.paste();
        QCOMPARE(field.draft(), u"Big\u00a0<b>\n"_s);

        // Whole seconds would pass if such a word were looked through for a place to break it.
        QGuiApplication::clipboard()->setText(QString(200'000, u'x'));
        field.paste();
        QCOMPARE(field.wordWrapMode(), QTextOption::WrapAnywhere);
        field.clear();
        QCOMPARE(field.wordWrapMode(), QTextOption::WrapAtWordBoundaryOrAnywhere);
    }
};

QTEST_MAIN(MessageInputTest)
#include "tst_messageinput.moc"
