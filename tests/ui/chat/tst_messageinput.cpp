#include "support/InputMethod.h"
#include "ui/chat/MessageInput.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>

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
    }

    // However it came into the field, a long line is laid out in parts, and is one line nevertheless.
    void holdsLongLines()
    {
        MessageInput field;
        const auto paste = [&field](const QString &text) {
            QGuiApplication::clipboard()->setText(text);
            field.paste();
        };
        const auto longest = [&field] {
            int length = 0;
            for (QTextBlock block = field.document()->begin(); block.isValid(); block = block.next())
                length = std::max(length, block.length());
            return length;
        };
        const QString lines = u"x"_s.repeated(9'000) + u"\n\u05D0\u00a0 "_s.repeated(5'000) + u"\r\nend"_s;
        const QString expected = QString(lines).replace(u"\r\n"_s, u"\n"_s);
        paste(lines);
        QCOMPARE(field.draft(), expected);
        QVERIFY(longest() <= 2'100);
        field.selectAll();
        field.copy();
        QCOMPARE(QGuiApplication::clipboard()->text(), expected);
        field.undo();
        QCOMPARE(field.draft(), QString());
        field.redo();
        QCOMPARE(field.draft(), expected);
        field.setDraft(lines);
        QCOMPARE(field.draft(), expected);

        QTextCursor cursor = field.textCursor();
        cursor.setPosition(2'500); // within the second part of the first line
        field.setTextCursor(cursor);
        for (int i = 0; i < 100; ++i)
            paste(u"y"_s.repeated(100));
        QCOMPARE(field.draft().indexOf(u'\n'), 19'000);
        QVERIFY(longest() <= 4'100);
        QTest::keyClick(&field, Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(field.draft().indexOf(u'\n'), field.draft().lastIndexOf(u'y') + 1);

        QSignalSpy refused(&field, &MessageInput::refused);
        const QString before = field.draft();
        paste(u"z"_s.repeated(FieldText::mostCharacters));
        paste(u"\n"_s.repeated(FieldText::mostLines));
        paste(u"\u2028"_s.repeated(FieldText::mostLines));
        QCOMPARE(refused.size(), 3);
        QCOMPARE(field.draft(), before);
    }
};

QTEST_MAIN(MessageInputTest)
#include "tst_messageinput.moc"
