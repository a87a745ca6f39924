#include "core/api/OllamaError.h"
#include "core/api/WireFormat.h"
#include "platform/error/SimpleError.h"
#include "platform/http/TransportError.h"
#include "support/DemoEngine.h"
#include "support/RawServer.h"
#include "support/Streams.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

using PullLine = WireFormat::Line<PullProgress>;
using ChatLine = WireFormat::Line<ChatChunk>;

// What stands for a line that cannot be read.
const PullLine unread{.record = {.total = -1}, .error = {}};

} // namespace

class OllamaClientTest : public QObject
{
    Q_OBJECT

    std::optional<DemoEngine> m_engine;
    template <class E>
    static QString sentenceFor(const E &error)
    {
        return Friendly::message(std::make_exception_ptr(error));
    }
    const ChatRequest m_hello{.model = u"phi3.5"_s, .messages = {{u"user"_s, u"hello"_s}}};

    OllamaClient client() const { return OllamaClient(m_engine->port()); }
    // How each request for a chat ended.
    QStringList chatEnds() const
    {
        QStringList states;
        const QJsonArray requests = m_engine->requests(u"/api/chat"_s);
        for (const QJsonValue request : requests)
            states.append(request["state"_L1].toString());
        return states;
    }

private Q_SLOTS:
    void init() { m_engine.emplace(DemoEngine::quick({{u"DEMO_ENGINE_INSTALLED"_s, u"phi3.5"_s}})); }

    void leavesOutWhatIsNotSet()
    {
        ::waitFor(readChat(client().chat(m_hello)));
        QCOMPARE(m_engine->requests(u"/api/chat"_s)[0]["body"_L1].toString(),
                 u"{\"messages\":[{\"content\":\"hello\",\"role\":\"user\"}],\"model\":\"phi3.5\","
                 "\"options\":{},\"stream\":true}"_s);
    }

    void findsNoEngine()
    {
        m_engine->setFaults(u"version:not-http"_s);
        QCOMPARE(failureOf(client().version()), u"The engine sent an answer I could not read."_s);
        m_engine->setFaults(u"version:stall-early"_s);
        QCOMPARE(failureOf(client().version()), u"The request timed out. Please try again."_s);
    }

    // Of the lines before a fault none is lost, and what failed is not sent again.
    void streamsBreakOff()
    {
        ChatRequest request = m_hello;
        request.messages[0].content = u"echo "_s + u"1234567 "_s.repeated(20);
        const QMap<QString, int> records{
            {u"close=2"_s, 2}, {u"early-end=2"_s, 2}, {u"error-line=unlucky"_s, 3}};
        for (auto fault = records.begin(); fault != records.end(); ++fault) {
            m_engine->setFaults(u"chat:"_s + fault.key());
            QCOMPARE(::waitFor(readChat(client().chat(request))).records, *fault);
        }
        QCOMPARE(chatEnds().size(), records.size());
    }

    void stopsTheTransfer()
    {
        m_engine->setFaults(u"chat:stall"_s);
        const StopSource stop;
        auto stopped = client().chat(m_hello, stop.token());
        std::optional dropped(client().chat(m_hello));
        QVERIFY(::waitFor(firstOf(&stopped)) && ::waitFor(firstOf(&*dropped)));
        stop.requestStop();
        dropped.reset();
        QCOMPARE(::waitFor(readChat(std::move(stopped))).failure, u"Cancelled."_s);
        QTRY_COMPARE(chatEnds(), QStringList({u"cut"_s, u"cut"_s}));
        QTRY_COMPARE(runningTasks(), 0);
    }

    void errorsAsSentences()
    {
        const QString diskFull = u"Your disk is full. Free some space and try again."_s;
        const QString noSuchModel = u"I couldn't find a model with that name in the Ollama library."_s;
        const QString needsMemory = u"This model needs more memory than your Mac has free. Try a smaller "
                                    "model or a shorter context length."_s;
        QMap<QString, QString> sentences{
            {u"write /m/blobs/x-partial: no space left on device"_s, diskFull},
            {u"Disk Full"_s, diskFull},
            {u"out of memory, no space left"_s, diskFull},
            {u"model requires MORE System memory (9 GiB)"_s, needsMemory},
            {u"insufficient memory"_s, needsMemory},
            {u"model not found: out of memory"_s, needsMemory},
            {u"pull model manifest: file does not exist"_s, noSuchModel},
            {u"NOT FOUND: this Model"_s, noSuchModel},
        };
        for (const QString &tooLarge :
             {u"llama-server reported out-of-memory during startup"_s, u"CUDA: failed to allocate 9 MiB"_s,
              u"llama runner process has terminated: signal: killed"_s, u"exit status 137"_s})
            sentences[tooLarge] = needsMemory;
        for (const QString &untouched : {u"404 page not found"_s, u"unexpected EOF"_s, u"error 500"_s,
                                         u"D\u0130SK FULL"_s, u"Invalid MODEL name"_s, QString()})
            sentences[untouched] = untouched;
        for (auto error = sentences.begin(); error != sentences.end(); ++error) {
            QCOMPARE(sentenceFor(SimpleError(error.key())), *error);
            QCOMPARE(sentenceFor(OllamaError::api(error.key())), *error);
            QCOMPARE(sentenceFor(std::runtime_error(error.key().toStdString())), *error);
        }

        // What says too little by itself is kept behind what to do.
        const QStringList starts{u"The model stopped"_s, u"This model cannot chat"_s, u"The engine failed"_s};
        const QList<std::pair<QString, int>> technical{
            {u"an error was encountered while running the model: unexpected EOF"_s, 0},
            {u"llama runner process has terminated with exit code -1"_s, 0},
            {u"\"tiny:latest\" does not support chat"_s, 1},
            {u"\"not found\" does not support chat"_s, 1},
            {u"The engine answered with error 500."_s, 2}};
        for (const auto &[message, start] : technical) {
            const QString sentence = sentenceFor(OllamaError::api(message));
            QVERIFY2(sentence.startsWith(starts[start]) && sentence.endsWith(message), qPrintable(sentence));
            QCOMPARE(Friendly::text(sentence), sentence);
        }

        // A description that a rule would catch, if it were looked at.
        using Code = TransportError::Code;
        const auto sentence = [](Code code) { return sentenceFor(TransportError(code, u"disk full"_s)); };
        for (const Code code : {Code::notConnectedToInternet, Code::connectionLost, Code::cannotFindHost})
            QCOMPARE(sentence(code), u"No network connection. Check your internet and try again."_s);
        QCOMPARE(sentence(Code::timedOut), u"The request timed out. Please try again."_s);
        QCOMPARE(sentence(Code::cannotConnect),
                 u"I can't reach the local engine. Is the Local server switched on?"_s);
        QCOMPARE(sentence(Code::cancelled), u"Cancelled."_s);
        QCOMPARE(sentence(Code::other), u"disk full"_s);
    }

    // What an answer or a line says. Members that are absent or of another type read as the record's
    // defaults; a list with an element that is none of its kind reads as empty.
    void numbers()
    {
        using Limits = std::numeric_limits<qint64>;
        const auto number = [](const char *text) {
            return WireFormat::pullLine("{\"total\":" + QByteArray(text) + "}").value_or(unread).record.total;
        };
        QCOMPARE(number("-1.5"), -1);
        QCOMPARE(number("9007199254740993"), 9007199254740993);
        QCOMPARE(number("1e300"), Limits::max());
        QCOMPARE(number("-1e300"), Limits::min());
        for (const char *const other : {"\"5\"", "true", "null"})
            QCOMPARE(number(other), 0);
        for (const char *const other : {"01", "-", "1.", "+1", "0x1", "1e"})
            QCOMPARE(number(other), -1);
    }

    void models()
    {
        using Installed = QList<InstalledModel>;
        const auto installed = [](const char *answer) { return WireFormat::installedModels(answer); };
        QCOMPARE(installed(R"({"models":{"name":"a"}})"), Installed());
        QCOMPARE(installed(R"({"models":[{"name":"a"},7]})"), Installed());
        QCOMPARE(installed(R"({"models":[{"name":"b","size":9,"details":{"family":"f","parameter_size":"p",
                               "quantization_level":"q"}},{"model":"a"},{"name":7},
                               {"name":"c","size":"9","details":{"family":1,"parameter_size":null}},
                               {"name":"a","details":[]}]})"),
                 (Installed{{u"b"_s, 9, u"f"_s, u"p"_s, u"q"_s}, {u"c"_s}, {u"a"_s}}));

        using Loaded = QList<LoadedModel>;
        const auto loaded = [](const char *answer) { return WireFormat::loadedModels(answer); };
        QCOMPARE(loaded(R"({"models":[{"name":"a"},"b"]})"), Loaded());
        QCOMPARE(loaded(R"({"models":[{"name":"a","model":"x","size":1.9},{"model":"b"},
                            {"name":1,"model":"c","size":"9"},{"name":null},{}]})"),
                 (Loaded{{u"a"_s, 1}, {u"b"_s, 0}, {u"c"_s, 0}}));

        const auto details = [](const char *answer) { return WireFormat::modelDetails(answer); };
        QCOMPARE(details(R"({"parameters":"a\nb","license":"MIT","capabilities":["completion","thinking"],
                             "details":{"family":"f","parameter_size":"p","quantization_level":"q"},
                             "model_info":{"general.parameter_count":5,"llama.context_length":131072}})"),
                 (ModelDetails{
                     u"a\nb"_s, 131072, u"q"_s, u"f"_s, u"p"_s, u"MIT"_s, {u"completion"_s, u"thinking"_s}}));
        QCOMPARE(details(R"({"capabilities":["thinking",1],"license":["MIT"],"details":"x","model_info":
                             {"a.context_length":"9","context_length":9,"a.context_lengths":9}})"),
                 ModelDetails());
    }

    void lines()
    {
        const auto pull = [](const char *line) { return WireFormat::pullLine(line).value_or(unread).record; };
        QCOMPARE(pull(R"({"status":"s","digest":"d","total":9,"completed":5})"),
                 (PullProgress{u"s"_s, u"d"_s, 9, 5}));
        QCOMPARE(pull(R"({"status":1,"digest":null,"total":"9","completed":true})"), PullProgress());

        const ChatLine silence{.record = {.evalCount = -1}, .error = {}};
        const auto chat = [&](const char *line) {
            return WireFormat::chatLine(line).value_or(silence).record;
        };
        QCOMPARE(chat(R"({"message":{"content":"c","thinking":"t"},"done":true,"eval_count":3,
                          "eval_duration":4})"),
                 (ChatChunk{u"c"_s, u"t"_s, true, 3, 4}));
        QCOMPARE(chat(R"({"message":"c","done":1,"eval_count":"3"})"), ChatChunk());

        // One that is not UTF-8 counts, one that is no object does not, however deep.
        const ChatLine odd = WireFormat::chatLine("{\"error\":\"a\xff\xc3(\"}").value_or(silence);
        QCOMPARE(odd.error, std::optional(u"a\uFFFD\uFFFD("_s));
        const QByteArray deep = QByteArray("{\"a\":").repeated(100'000) + '1' + QByteArray(100'000, '}');
        for (const QByteArray &line :
             QByteArrayList{"", " ", "{\"a\":", "[{}]", "7", "{} {}", "{\"a\":\"\\x\"}", deep})
            QVERIFY(!WireFormat::pullLine(line) && !OllamaClient::parseError(line));
    }

    // What is larger than anything that the engine has to say is not kept, and no number of tiny values
    // either.
    void tooMuch()
    {
        const auto models = [](qsizetype count) {
            const QByteArray list = QByteArray("{\"name\":\"a\"},").repeated(count);
            return "{\"models\":[" + list.chopped(1) + "]}";
        };
        QCOMPARE(WireFormat::installedModels(models(WireFormat::longestList)).size(),
                 WireFormat::longestList);
        QVERIFY(WireFormat::installedModels(models(WireFormat::longestList + 1)).isEmpty());
        const QByteArray name = "a" + QByteArray(WireFormat::longestName, ' ');
        QVERIFY(WireFormat::installedModels("{\"models\":[{\"name\":\"" + name + "\"}]}").isEmpty());
        QVERIFY(WireFormat::loadedModels("{\"models\":[{\"name\":\"" + name + "\"}]}").isEmpty());

        QByteArray answer;
        const RawServer server([&](QTcpSocket &socket) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(answer.size()) +
                         "\r\n\r\n");
            socket.write(answer);
        });
        const OllamaClient engine(server.serverPort());
        const auto padded = [](qsizetype size) {
            return "{\"models\":[{\"name\":\"a\"}],\"version\":\"1\",\"pad\":\"" + QByteArray(size, '.') +
                   "\"}";
        };
        answer = padded(10 << 20);
        QCOMPARE(::waitFor(engine.tags()).size(), 1);
        QVERIFY(::waitFor(engine.ps()).isEmpty());
        answer = padded(1 << 20);
        QCOMPARE(::waitFor(engine.version()), QString());
        // A line that is too long is passed over like one that cannot be read.
        answer =
            "{\"message\":{\"content\":\"a\"}}\n" + padded(9 << 20) + "\n{\"message\":{\"content\":\"b\"}}";
        QCOMPARE(::waitFor(readChat(engine.chat(m_hello))).records, 2);
    }
};

QTEST_GUILESS_MAIN(OllamaClientTest)
#include "tst_ollamaclient.moc"
