// From the text of a reply to what is shown of it: reasoning and answer, and the Markdown of both.
#include "core/chat/MarkdownLine.h"
#include "core/chat/MarkdownLines.h"
#include "core/chat/MarkdownView.h"
#include "core/chat/ParsedReply.h"
#include "support/RandomText.h"
#include "support/ReferenceParsed.h"
#include "support/Table.h"

using namespace Qt::StringLiterals;

namespace {

using Blocks = QList<MDBlock>;
using Style = MarkdownLine::Style;

const auto text = &MDBlock::text;
const auto code = &MDBlock::code;

const QStringList replyPieces = {
    u"<think>"_s, u"</think>"_s, u"<thi"_s, u"nk>"_s,  u"</thi"_s, u"</th"_s, u"ink>"_s, u"<"_s,
    u">"_s,       u" "_s,        u"\n"_s,   u"\n\n"_s, u"word"_s,  u"a"_s,    u"é"_s,    u"\U0001f600"_s};

} // namespace

class ReplyTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data()
    {
        const auto row = table<QString, Blocks>("markdown", "blocks");
        row("around code", u"Hi\n```js\nlet a = 1\n```\nBye"_s,
            {text(u"Hi"_s), code(u"js"_s, u"let a = 1"_s), text(u"Bye"_s)});
        row("open block without a line", u"text\n```py"_s, {text(u"text"_s), code(u"py"_s, {})});
        row("block of an empty line", u"```\n\n```"_s, {code({}, {})});
        row("indented fence", u"  ```js title  "_s, {code(u"js title"_s, {})});
        row("four backticks", u"````js\nx\n````"_s, {code(u"`js"_s, u"x"_s)});
        row("untrimmed", u"  a \n\tb\n```\n  c \n```"_s, {text(u"  a \n\tb"_s), code({}, u"  c "_s)});
        row("no-break space is no blank", u"\u00a0```"_s, {text(u"\u00a0```"_s)});
    }

    void parse()
    {
        QFETCH(const QString, markdown);
        QTEST(MarkdownView::parse(markdown), "blocks");
    }

    void line_data()
    {
        const auto row = table<Style, qsizetype, QString>("style", "inset", "text");
        row(" \t ", Style::blank, 0, {});
        row("### Title", Style::headline, 0, u"Title"_s);
        row("# Title", Style::title2, 0, u"Title"_s);
        row("#### Title", Style::body, 0, u"#### Title"_s);
        row("    - item", Style::bullet, 22, u"item"_s);
        row("+  item", Style::bullet, 6, u" item"_s);
        row("-", Style::body, 0, u"-"_s);
        row("  1. First", Style::body, 8, u"1. First"_s);
        row(" \t text", Style::body, 4, u"text"_s);
        row("\ttext\t", Style::body, 0, u"text"_s);
    }

    void line()
    {
        const QString line = QString::fromUtf8(QTest::currentDataTag());
        const MarkdownLine read = MarkdownLine::read(line);
        QTEST(read.style, "style");
        QTEST(read.inset, "inset");
        QTEST(read.text.toString(), "text");
    }

    // However a text arrives, and even when its end is taken back, its lines are those of the whole.
    void linesWhileGrowing()
    {
        const QStringList pieces = {u"\n"_s, u"\n"_s, u"```"_s,  u"`"_s,  u"``"_s,
                                    u" "_s,  u"\t"_s, u"word"_s, u"- "_s, u"é"_s};
        for (quint32 seed = 1; seed <= 300; ++seed) {
            RandomText random(seed, pieces);
            const QString whole = random.text(120);
            MarkdownLines growing;
            QString shown;
            for (const qsizetype end : random.cuts(whole.size())) {
                const qsizetype unchanged = std::min(shown.size(), end);
                shown = whole.first(end);
                const std::vector<MarkdownLines::Line> before = growing.lines();
                const qsizetype firstChanged = growing.update(shown, unchanged);
                MarkdownLines fresh;
                fresh.update(shown, 0);
                QCOMPARE(growing.lines(), fresh.lines());
                const auto kept = static_cast<size_t>(firstChanged);
                QVERIFY(kept <= before.size() && kept <= fresh.lines().size());
                QVERIFY(std::equal(before.begin(), before.begin() + firstChanged, fresh.lines().begin()));
            }
        }
    }

    void split_data()
    {
        const auto row = table<QString, QString, QString, QString>("field", "content", "thinking", "answer");
        row("still open", {}, u"Hi <think>still going"_s, u"still going"_s, u"Hi"_s);
        row("second closing tag stays", {}, u"a</think>b</think>c"_s, u"a"_s, u"b</think>c"_s);
        row("behind the field", u" T\n"_s, u"<think> u </think> v "_s, u" T\n\n\nu"_s, u"v"_s);
        row("tag in a block", {}, u"<think>a<think>b</think>c</think>d"_s, u"a<think>b\n\nc"_s, u"d"_s);
        row("closing up makes a tag", {}, u"<thi<think>a</think>nk>b</think>c"_s, u"a\n\nb"_s, u"c"_s);
        row("line breaks", {}, u"\r\n\u0085<think>\u2028a\v</think>\u2029b\u00a0"_s, u"a"_s, u"b"_s);
    }
    void split()
    {
        QFETCH(const QString, field);
        QFETCH(const QString, content);
        const ChatMessage message{{}, {}, content, field, {}, {}};
        QTEST(message.parsed().thinking, "thinking");
        QTEST(message.parsed().answer, "answer");
    }

    // Each would take minutes in time that grows with the square of the text.
    void longHostileText()
    {
        constexpr qsizetype times = 500'000;
        for (const QString &content :
             {u"<think>"_s.repeated(times), u"<think>a</think>b"_s.repeated(times),
              u"<thi"_s.repeated(times) + u"<think></think>"_s + u"nk></think>"_s.repeated(times),
              u"<think></think>"_s + u">"_s.repeated(times)}) {
            const ParsedMessage parsed = ChatMessage::make({}, content).parsed();
            QVERIFY(parsed.thinking.size() + parsed.answer.size() <= content.size() * 2);
        }
    }

    // However the two texts of a message grow, or are cut back, the split is that of the whole message.
    void splitWhileGrowing()
    {
        for (quint32 seed = 1; seed <= 4000; ++seed) {
            RandomText random(seed, replyPieces);
            const QString content = random.text(40);
            const QString thinking = seed % 2 == 0 ? random.text(6) : QString();
            ParsedReply growing;
            ChatMessage message;
            const QList<qsizetype> contentCuts = random.cuts(content.size());
            const QList<qsizetype> thinkingCuts = random.cuts(thinking.size());
            for (qsizetype i = 0; i < std::max(contentCuts.size(), thinkingCuts.size()); ++i) {
                message.content = content.first(contentCuts.value(i, content.size()));
                message.thinking = thinking.first(thinkingCuts.value(i, thinking.size()));
                const QString answer = growing.answer().toString();
                const QString reasoning = growing.reasoning().toString();
                growing.update(message.content, message.thinking);
                const ParsedMessage expected = referenceParsed(message);
                QVERIFY2(message.parsed() == expected, qUtf8Printable(message.content));
                QCOMPARE(growing.answer(), expected.answer);
                QCOMPARE(growing.reasoning(), expected.thinking);
                const qsizetype kept = growing.unchangedAnswer();
                QCOMPARE(growing.answer().first(kept), QStringView(answer).first(kept));
                const qsizetype alsoKept = growing.unchangedReasoning();
                QCOMPARE(growing.reasoning().first(alsoKept), QStringView(reasoning).first(alsoKept));
            }
        }
    }

    void tellsWhatIsUnchanged()
    {
        ParsedReply reply;
        ChatMessage message;
        message.thinking = u"plan"_s;
        message.content = u"An answer "_s;
        reply.update(message.content, message.thinking);
        message.thinking += u" more"_s;
        message.content += u"that grows"_s;
        reply.update(message.content, message.thinking);
        QCOMPARE(reply.unchangedReasoning(), qsizetype{4});
        QCOMPARE(reply.unchangedAnswer(), qsizetype{9});
        // Another text altogether.
        message.content = u"The <think>other</think> text, which is longer"_s;
        reply.update(message.content, message.thinking);
        QCOMPARE(reply.answer(), u"The  text, which is longer"_s);
        QCOMPARE(reply.reasoning(), u"plan more\n\nother"_s);
    }
};

QTEST_GUILESS_MAIN(ReplyTextTest)
#include "tst_replytext.moc"
