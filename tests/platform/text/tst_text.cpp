#include "platform/text/ByteCount.h"
#include "platform/text/LowerCaseSearch.h"
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
