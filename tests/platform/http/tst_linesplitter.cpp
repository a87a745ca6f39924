#include "platform/http/LineSplitter.h"
#include "support/Table.h"

namespace {

// Handed over in pieces of `size` bytes.
QByteArrayList linesOf(const QByteArray &body, qsizetype size)
{
    LineSplitter splitter;
    QByteArrayList lines;
    for (qsizetype start = 0; start < body.size(); start += size) {
        splitter.append(body.mid(start, size));
        while (const auto line = splitter.next())
            lines.append(line->toByteArray());
    }
    if (const auto line = splitter.rest())
        lines.append(line->toByteArray());
    return lines;
}

} // namespace

class LineSplitterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsAtEveryBreak_data()
    {
        const auto row = table<QByteArray, QByteArrayList>("body", "lines");
        row("no last break", "one\ntwo", {"one", "two"});
        row("mixed", "\n\r\n\r\rone\r\n\ntwo\r", {"", "", "", "", "one", "", "two"});
        row("not UTF-8", "\xff\xc3\n\x28\xe2\x82\xac\n", {"\xff\xc3", "\x28\xe2\x82\xac"});
        row("zeros", QByteArray("a\0b\n\0", 5), {QByteArray("a\0b", 3), QByteArray("\0", 1)});
    }
    void cutsAtEveryBreak()
    {
        QFETCH(QByteArray, body);
        for (qsizetype size = 1; size <= body.size() + 1; ++size)
            QTEST(linesOf(body, size), "lines");
    }

    void dropsWhatIsTooLong()
    {
        LineSplitter splitter(4);
        QByteArrayList lines;
        for (const QByteArray piece : {"abc", "d\nab", "cde", "f", "\ngh\nijkl", "m"}) {
            splitter.append(piece);
            while (const auto line = splitter.next())
                lines.append(line->toByteArray());
        }
        QCOMPARE(lines, (QByteArrayList{"abcd", "", "gh"}));
        QVERIFY(!splitter.rest());
    }

    // Each would take minutes if a byte were looked at again with every piece or every line.
    void staysLinear()
    {
        constexpr qsizetype size = 1 << 20;
        QCOMPARE(linesOf(QByteArray(size, 'x'), 4).size(), 1);
        QCOMPARE(linesOf(QByteArray(size, '\r'), size).size(), size);
        QCOMPARE(linesOf(QByteArray(size, '\n'), size).size(), size);
    }
};

QTEST_APPLESS_MAIN(LineSplitterTest)
#include "tst_linesplitter.moc"
