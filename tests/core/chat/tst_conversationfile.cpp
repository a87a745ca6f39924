// What the chats keep on the disk: a file for each conversation, and the settings of the models.
#include "core/chat/ConversationFile.h"
#include "core/chat/ModelSettings.h"
#include "core/chat/StoredText.h"
#include "support/Table.h"

#include <QFile>

#include <limits>

using namespace Qt::StringLiterals;
using Limits = std::numeric_limits<double>;

namespace {

const QByteArray sampleId = "6A1C2F0E-93B4-4D7A-8E21-5C0F4B9D7E13";

Conversation sample()
{
    const QUuid id(QString::fromLatin1(sampleId));
    const QDateTime made(QDate(2025, 3, 14), QTime(9, 26, 53), Qt::UTC);
    Conversation conversation{id, u"Trip plan"_s, u"qwen3:4b"_s, false, made, made.addSecs(60), {}};
    conversation.messages = {{id, u"user"_s, u"Hi"_s, {}, {}, made},
                             {id, u"assistant"_s, u"Hello"_s, u"greet"_s, 30.5, made}};
    return conversation;
}

const QByteArray sampleFile = [] {
    QFile file(QStringLiteral(TARNWICK_SOURCE_DIR "/tests/core/chat/conversation.json"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}();

// The sample with an unknown member of this value in front of a known one.
QByteArray withUnknown(const QByteArray &value)
{
    return QByteArray(sampleFile).replace("\"think\"", "\"x\": " + value + ", \"think\"");
}

bool survives(const Conversation &conversation)
{
    const auto file = ConversationFile::encode(conversation);
    return file && ConversationFile::decode(*file) == std::optional(conversation);
}

} // namespace

class ConversationFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void form()
    {
        QCOMPARE(ConversationFile::name(sample().id), QString::fromLatin1(sampleId + ".json"));
        QCOMPARE(ConversationFile::encode(sample()).value(), sampleFile);
        QCOMPARE(ConversationFile::decode(sampleFile), std::optional(sample()));
    }

    void reading_data()
    {
        const auto whole = table<QByteArray, bool>("file", "readable");
        const auto row = [&whole](const char *name, const QByteArray &before, const QByteArray &after,
                                  bool readable) {
            whole(name, QByteArray(sampleFile).replace(before, after), readable);
        };
        row("without line breaks", "\n", "", true);
        row("byte order mark in front", "{\n    \"createdAt\"", "\xEF\xBB\xBF{\n    \"createdAt\"", true);
        row("name with an escape", "\"title\"", "\"\\u0074itle\"", true);
        row("lower-case id", sampleId, sampleId.toLower(), true);
        row("speed is null", "30.5", "null", true);
        row("speed is text", "30.5", "\"30.5\"", false);
        row("speed is out of range", "30.5", "1e999", false);
        row("think is a number", "false", "0", false);
        row("message that is no object", "\"messages\": [", "\"messages\": [7,", false);
        row("bytes that are not UTF-8", "Hello", "H\xffllo", false);
        row("something behind", "}\n", "}\n7", false);
        for (const QByteArray member : {"createdAt", "id", "messages", "model", "think", "title", "updatedAt",
                                        "content", "role", "thinking"})
            row(("without " + member).constData(), '"' + member + '"', "\"missing\"", false);
        for (const QByteArray value : {"{\"a\": [-1.5e-3, 0, 1E+2, true, false, null, {}, []]}",
                                       "\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u00e9\""})
            whole("unknown member " + value, withUnknown(value), true);
        for (const QByteArray value :
             {"01", "1.", ".5", "+1", "-", "1e", "1e999", "nul", "'a'", "\"\\x\"", "\"\\u12g4\"", "\"\t\"",
              "[1,]", "[1 2]", "[1", "{\"a\":1,}", "{\"a\" 1}", "{1:1}", ""})
            whole("unknown member " + value, withUnknown(value), false);
        const auto nested = [](int depth) { return QByteArray(depth, '[') + QByteArray(depth, ']'); };
        whole("nested as deep as may be", withUnknown(nested(512)), true);
        whole("nested too deep", withUnknown(nested(513)), false);
    }
    void reading()
    {
        QFETCH(const QByteArray, file);
        QTEST(ConversationFile::decode(file).has_value(), "readable");
    }

    void whatCanBeWrittenSurvives()
    {
        Conversation conversation = sample();
        ChatMessage &message = conversation.messages.last();
        for (const QString &text : {u"a\0\b\f\n\r\t\u0001\u001f\u007f\u0085\u2028"_s, u"\\\"\\\\n\\u0041/"_s,
                                    u"ü\U0001F600\n\U0010FFFF\ufffe\uffff"_s, u"\ufeff\ufeffa\"\ufeff"_s,
                                    QString(QChar(0xd83d)) + u"x"_s + QChar(0xde00) + QChar(0xd83d)}) {
            conversation.title = message.content = text;
            QVERIFY2(survives(conversation), qUtf8Printable(text));
        }
        for (const double value : {0.1 + 0.2, -0.0, 9007199254740993.0, Limits::max(), Limits::min()}) {
            message.tokensPerSecond = value;
            QVERIFY(survives(conversation));
        }
        for (const double value : {Limits::infinity(), Limits::quiet_NaN()}) {
            message.tokensPerSecond = value;
            QVERIFY(!ConversationFile::encode(conversation));
        }
        message.tokensPerSecond.reset();
        for (const QDateTime &date : {QDateTime(), sample().createdAt.addYears(8000)}) {
            message.createdAt = date;
            QVERIFY(!ConversationFile::encode(conversation));
        }
    }

    void datesAndIds()
    {
        for (const QString &text : {u"2024-02-29T00:00:00Z"_s, u"0001-01-01T00:00:00Z"_s}) {
            const QDateTime date = dateFromText(text).value_or(QDateTime());
            QCOMPARE(date, QDateTime::fromString(text, Qt::ISODate));
            QCOMPARE(dateText(date.addMSecs(999).toOffsetFromUtc(7200)), std::optional(text));
        }
        for (const QString &text :
             {u"2025-02-29T00:00:00Z"_s, u"2025-03-14T24:00:00Z"_s, u"2025-03-14T09:26:53.5Z"_s,
              u"2025-03-14T09:26:53+00:00"_s, u"2025-03-14t09:26:53z"_s, u"\u0662025-03-14T09:26:53Z"_s})
            QVERIFY2(!dateFromText(text), qUtf8Printable(text));
        for (const QString &text :
             {u"6A1C2F0E93B44D7A8E215C0F4B9D7E13"_s, u"6A1C2F0E-93B4-4D7A-8E21-5C0F4B9D7E1G"_s})
            QVERIFY2(!uuidFromText(text), qUtf8Printable(text));
    }

    void modelSettings()
    {
        const ModelSettingsMap settings{{u"qwen3:4b"_s, {}},
                                        {u"\"odd\" näme"_s, {u" Be brief.\n"_s, 0.1 + 0.2, 1, 131'072, -1}}};
        const QByteArray stored = encodeModelSettings(settings).value();
        QVERIFY(!stored.contains('\n'));
        QCOMPARE(decodeModelSettings(stored), std::optional(settings));
        QCOMPARE(decodeModelSettings("{}"), std::optional(ModelSettingsMap()));
        QVERIFY(!decodeModelSettings("[]"));
        QVERIFY(!encodeModelSettings({{u"a"_s, {{}, Limits::infinity(), 0.9, 1, 1}}}));
        QVERIFY(!encodeModelSettings({{u"a"_s, {{}, 0.8, Limits::quiet_NaN(), 1, 1}}}));

        // An entry that cannot be read spoils them all.
        const auto isRead = [](const QByteArray &before, const QByteArray &after) {
            const QByteArray entry = "{\"systemPrompt\":\"p\",\"temperature\":1,\"topP\":0.5,\"numCtx\":4096,"
                                     "\"keepAliveMinutes\":-1}";
            const QByteArray changed = QByteArray(entry).replace(before, after);
            return decodeModelSettings("{\"other\":" + entry + ",\"m\":" + changed + '}').has_value();
        };
        QVERIFY(isRead("4096", "4.096e3") && isRead("{", "{\"seed\":7,"));
        QVERIFY(!isRead("0.5", "true") && !isRead("\"p\"", "5"));
        for (const char *const number : {"4096.5", "4294967297", "\"4096\"", "null"})
            QVERIFY2(!isRead("4096", number), number);
        for (const char *const member : {"systemPrompt", "temperature", "topP", "numCtx", "keepAliveMinutes"})
            QVERIFY2(!isRead(member, "unknown"), member);
    }
};

QTEST_GUILESS_MAIN(ConversationFileTest)
#include "tst_conversationfile.moc"
