#include "support/Table.h"
#include "ui/chat/transcript/InlineMarkdown.h"

using namespace Qt::StringLiterals;

namespace {

// The text with its runs in braces: "{b:bold}", "{i:italic}", "{c:code}", "{s:struck}", "{a=target:link}".
QString described(const StyledText &styled)
{
    QString text;
    qsizetype at = 0;
    for (const StyledText::Run &run : styled.runs) {
        text += QStringView(styled.text).sliced(at, run.start - at);
        text += u'{';
        if (run.emphases.testFlag(StyledText::strong))
            text += u'b';
        if (run.emphases.testFlag(StyledText::emphasis))
            text += u'i';
        if (run.emphases.testFlag(StyledText::code))
            text += u'c';
        if (run.emphases.testFlag(StyledText::strikethrough))
            text += u's';
        if (run.link >= 0)
            text += u"a="_s + styled.links[run.link];
        text += u':' + styled.text.sliced(run.start, run.length) + u'}';
        at = run.start + run.length;
    }
    return text + styled.text.sliced(at);
}

} // namespace

class InlineMarkdownTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void styles_data()
    {
        const auto row = table<QString>("expected");
        row("**bold** *it* _it_ `a*b*c` ~~gone~~", u"{b:bold} {i:it} {i:it} {c:a*b*c} {s:gone}"_s);
        row("***both*** **a `b` c**", u"{bi:both} {b:a }{bc:b}{b: c}"_s);
        row("snake_case_name 2*3*4", u"snake_case_name 2{i:3}4"_s);
        row("`` a`b ``", u"{c:a`b}"_s);
        row("\\*not\\* C:\\\\dir", u"*not* C:\\dir"_s);
        row("[**b** t](https://a.b/c?d=1&amp;e)", u"{ba=https://a.b/c?d=1&e:b}{a=https://a.b/c?d=1&e: t}"_s);
        row("<https://a.b> <x@y.z>", u"{a=https://a.b:https://a.b} {a=mailto:x@y.z:x@y.z}"_s);
        row("[x](javascript:alert) []()", u"{a=javascript:alert:x} "_s);
        row("![a *cat*](http://a.b/c.png)!", u"a {i:cat}!"_s);
        row("**open and *nothing", u"**open and *nothing"_s);
        row("<b>raw</b> <!-- no --> <script>", u"<b>raw</b> <!-- no --> <script>"_s);
        row("&nbsp; &CounterClockwiseContourIntegral; &NotEqualTilde; &Afr; &nosuchname;",
            u"\u00a0 ∳ ≂̸ \U0001d504 &nosuchname;"_s);
        row("&#65; &#x1F600; &#0; &#xD800; &#1234567;", u"A \U0001f600 \ufffd \ufffd \ufffd"_s);
        row("`&amp; &#65;`", u"{c:&amp; &#65;}"_s);
        // What would be a block elsewhere is text here, with all of its white space.
        for (const QByteArray &text :
             {"1. First"_ba, "> quote"_ba, "==="_ba,         "---"_ba,          "    four spaces"_ba,
              "\ttab"_ba,    "- item"_ba,  "# heading"_ba,   "[a]: /target"_ba, "| a | b |"_ba,
              "```"_ba,      "~~~"_ba,     "<div>"_ba,       "a   b \t c"_ba,   "\u00a0first"_ba,
              "+"_ba,        ""_ba,        "a & b &c; &"_ba, "https://a.b"_ba,  "😀 é שלום"_ba})
            row(text, QString::fromUtf8(text));
    }
    void styles()
    {
        QTEST(described(inlineMarkdown(QString::fromUtf8(QTest::currentDataTag()))), "expected");
    }

    // What no keyboard types must neither end the line nor the program.
    void awkwardCharacters()
    {
        QCOMPARE(inlineMarkdown(u"a\r=== **b**"_s).text, u"a\u2028=== b"_s);
        QCOMPARE(inlineMarkdown(QString(QChar(0)) + u'x').text, u"\ufffdx"_s);
        QCOMPARE(inlineMarkdown(QString(QChar(0xd800)) + u'x').text, u"\ufffdx"_s);
    }
};

QTEST_GUILESS_MAIN(InlineMarkdownTest)
#include "tst_transcriptinline.moc"
