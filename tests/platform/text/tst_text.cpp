#include "platform/text/ByteCount.h"
#include "platform/text/LowerCaseSearch.h"
#include "platform/text/OutsideText.h"
#include "support/RandomText.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

class TextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void byteCounts()
    {
        const std::initializer_list<std::pair<qint64, QString>> rows{
            {0, u"Zero KB"_s},
            {1, u"1 byte"_s},
            {-1, u"-1 byte"_s},
            {1'499, u"1 KB"_s},
            {1'500, u"2 KB"_s},
            {-999'500, u"-1 MB"_s},
            {999'949'999, u"999.9 MB"_s},
            {1'004'999'999, u"1 GB"_s},
            {1'005'000'000, u"1.01 GB"_s},
            {999'995'000'000'000'000, u"1 EB"_s},
            {std::numeric_limits<qint64>::min(), u"-9.22 EB"_s},
        };
        for (const auto &[bytes, expected] : rows)
            QCOMPARE(byteCountText(bytes), expected);
    }

    // What is piled up without an end is taken apart, and what a script needs stays.
    void boundsPiles()
    {
        const QString flag = u"\U0001F3F4\U000E0067\U000E0062\U000E0073\U000E0063\U000E0074\U000E007F"_s;
        const QString family = u"\U0001F469\U0001F3FD\u200D\u2764\uFE0F\u200D\U0001F468\U0001F3FF"_s;
        const QString korean = u"\u1112\u1161\u11AB\u1100\u1173\u11AF"_s.repeated(50);
        for (const QString &usual :
             {flag.repeated(20), family.repeated(20), korean, u"e\u0301\u0323"_s.repeated(99),
              u"\u0E01\u0E31\u0E14"_s.repeated(50), u"abc \r\n"_s, QString()})
            QCOMPARE(withoutPiles(usual), usual);
        for (const QString &pile : {u"\u0301"_s, u"\u200D"_s, u"\u200B"_s, u"\uFE0F"_s, u"\U000E0067"_s,
                                    u"\u1100"_s, u"\u3164"_s, u"\u202E"_s, u"\u00AD"_s}) {
            const QString tame = withoutPiles(u'a' + pile.repeated(200));
            QCOMPARE(tame.size(), 1 + 200 * pile.size());
            for (const QString &left : tame.split(QChar(QChar::ReplacementCharacter)))
                QVERIFY2(left.size() <= 34, qUtf8Printable(pile.toHtmlEscaped()));
        }
        const QString chain = withoutPiles(u"\U0001F600\u200D"_s.repeated(1000));
        QCOMPARE(chain.count(QChar::ReplacementCharacter), 90);
    }

    void leavesWordsAroundItAlone_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const QString &text, const QString &expected) {
            QTest::newRow(name) << text << expected;
        };
        row("ordinary", u"gemma3:4b \u00e9 \u4e2d"_s, u"gemma3:4b \u00e9 \u4e2d"_s);
        row("right to left", u"\u05D0\u05D1"_s, u"\u2068\u05D0\u05D1\u2069"_s);
        row("Arabic digits", u"\u0661"_s, u"\u2068\u0661\u2069"_s);
        row("override", u"a\u202Eb"_s, u"\u2068ab\u2069"_s);
        row("end of an isolate", u"a\u2069\u202Cb"_s, u"\u2068ab\u2069"_s);
        row("mark", u"a\u200F"_s, u"\u2068a\u200F\u2069"_s);
        row("beyond the first plane", u"\U00010800"_s, u"\u2068\U00010800\u2069"_s);
    }
    void leavesWordsAroundItAlone()
    {
        QFETCH(const QString, text);
        QTEST(isolated(text), "expected");
        QCOMPARE(shownLine(u"x "_s + isolated(text)), u"x "_s + isolated(text));
    }

    void shownOnOneLine()
    {
        QCOMPARE(shownLine(u"a\r\n\u2028\tb\u202E\u202Bc"_s), u"a    bc"_s);
        QCOMPARE(shownLine(QString(9, u'a') + u"\U0001F600"_s, 10), QString(9, u'a') + u'…');
    }

    void findsEveryLetterByItsLowerCase()
    {
        for (char32_t letter = 0; letter <= QChar::LastValidCodePoint; ++letter) {
            const QString text = QString::fromUcs4(&letter, 1);
            const QString lower = text.toLower();
            if (lower == text)
                continue;
            QVERIFY2(LowerCaseSearch(lower).isIn(text), qUtf8Printable(text));
            QVERIFY2(LowerCaseSearch(text + u'x').isIn(u"x"_s + lower + u'X'), qUtf8Printable(text));
        }
    }

    // Letters that grow, that several share a lower case with, halves of pairs, and a little of everything
    // else.
    void findsWhatLowerCaseCopiesWouldShow()
    {
        const QStringList pieces{
            u"i"_s,  u"I"_s, u"İ"_s, u"\u0307"_s,      u"ı"_s, u"k"_s,  u"\u212a"_s,      u"K"_s,
            u"Σ"_s,  u"ς"_s, u"σ"_s, u"ẞ"_s,           u"ß"_s, u"Ǆ"_s,  u"ǅ"_s,           u"\u2126"_s,
            u"😀"_s, u"𐐀"_s, u"𐐨"_s, QChar(u'\xd83d'), u" "_s, u"\n"_s, QChar(u'\xde00'), u"Ab"_s};
        RandomText random(7, pieces);
        int found = 0;
        for (int round = 0; round < 3'000; ++round) {
            const QString text = random.text(119);
            const QString query = random.text(3);
            const bool expected = text.toLower().contains(query.toLower());
            found += expected ? 1 : 0;
            QVERIFY2(LowerCaseSearch(query).isIn(text) == expected, qUtf8Printable(query + u" in "_s + text));
        }
        QVERIFY(found > 300 && found < 2'700);
    }
};

QTEST_GUILESS_MAIN(TextTest)
#include "tst_text.moc"
