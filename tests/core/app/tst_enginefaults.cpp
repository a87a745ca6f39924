#include "support/AppUnderTest.h"
#include "support/Waiting.h"

#include <QTest>

using namespace Qt::StringLiterals;
using Phase = DownloadItem::Phase;

namespace {

const QString unreachable = u"I can't reach the local engine. Is the Local server switched on?"_s;
const QString unreadable = u"The engine sent an answer I could not read."_s;
const QString timedOut = u"The request timed out. Please try again."_s;
const QString askedToFail = u"the demonstration engine was asked to fail"_s;
const QString code = u"The engine answered with error %1."_s;
const QString noReason =
    u"The engine failed and gave no reason. Try again; if it happens with one model only, delete that model "
    "and download it again. The engine says: The engine answered with error 500."_s;
const QString stopped =
    u"The model stopped unexpectedly. Try again; if it happens again, try a smaller model "
    "or a shorter context length. The engine says: "_s;
const QString noRunner =
    stopped + u"llama-server process has terminated: exit status 2\nerror loading model: unable to "
              "allocate CPU buffer\nllama_model_load_from_file_impl: failed to load model"_s;
const QString noMemory = u"This model needs more memory than your Mac has free. Try a smaller model or a "
                         "shorter context length."_s;
const QString noHost = u"pull model manifest: Get \"https://registry.ollama.ai/v2/library/m/manifests/"
                       "latest\": dial tcp: lookup registry.ollama.ai: no such host"_s;
const QString stoppedEarly = u"The download stopped early. Press Resume to continue where it left off."_s;

// As script/endurance asks for.
const bool takesItsTime = qEnvironmentVariableIsSet("TARNWICK_LONG_TESTS");
const int patience = takesItsTime ? 120'000 : 30'000; // ms

// What a fault leaves of an answer.
enum Content
{
    whole,
    part,
    nothing
};

// Faults, with blanks between them, that come to the same.
struct Faults
{
    QString names;
    Content content = whole;
    QString sentence = {}; // what the user is told; empty for nothing
};

// Of the answers that come in one piece. "nothing" is an answer like that of an engine that has nothing.
const QList<Faults> answerFaults{
    {u"text-numbers bytes=0 cuts=0"_s},
    {u"reset close bad-chunk"_s, part, unreachable},
    {u"status=302 status=304;empty"_s, nothing, unreadable},
    {u"not-http reset-early close-early"_s, nothing, unreachable},
    {u"not-json empty-body wrong-types"_s, nothing},
    {u"status=500"_s, nothing, askedToFail},
    {u"status=500;text status=500;no-error endless-error=500"_s, nothing, noReason},
    {u"status=404;html"_s, nothing, code.arg(404)},
    {u"status=503;empty"_s, nothing, code.arg(503)},
    {u"status=400;odd-error"_s, nothing, code.arg(400)},
};

const QList<Faults> pauses{
    {u"stall-early=1 stall=1"_s},
    {u"stall-early"_s, nothing, timedOut},
};

// The user stops what stalls.
const QList<Faults> streamFaults{
    {u"text-numbers bytes=0 cuts=0 truncated-lines blank-lines huge-lines cr crlf no-last-newline"_s},
    {u"reset close"_s, part, unreachable},
    {u"status=307"_s, nothing, unreadable},
    {u"not-http reset-early close-early"_s, nothing, unreachable},
    {u"stall"_s, part},
    {u"stall-early wrong-types"_s, nothing},
    {u"status=500 error-first"_s, nothing, askedToFail},
    {u"endless-error=500"_s, nothing, noReason},
    {u"error-line=unlucky"_s, part, u"unlucky"_s},
};

const QList<Faults> chatFaults{
    {u"no-done no-counters zero-counters"_s},
    {u"early-end text-in-last-line invalid-utf8"_s, part},
    {u"bad-chunk"_s, part}, // taken for the end
    {u"no-message"_s, nothing},
    {u"runner-died"_s, part, stopped + u"an error was encountered while running the model: unexpected EOF"_s},
    {u"load-fail"_s, nothing, noRunner},
    {u"out-of-memory"_s, nothing, noMemory},
    {u"busy"_s, nothing, u"server busy, please try again.  maximum pending requests exceeded"_s},
};

const QList<Faults> pullFaults{
    {u"falling invalid-utf8 text-numbers bytes=0 cuts=0 truncated-lines blank-lines huge-lines cr crlf"_s},
    {u"no-last-newline"_s},
    {u"early-end bad-chunk no-success wrong-types"_s, part, stoppedEarly},
    {u"reset close"_s, part, unreachable},
    {u"not-http reset-early close-early"_s, nothing, unreachable},
    {u"stall stall-early"_s, nothing},
    {u"status=500 error-first"_s, nothing, askedToFail},
    {u"endless-error=500"_s, nothing, noReason},
    {u"canceled"_s, nothing, u"context canceled"_s},
    {u"no-host"_s, nothing, noHost},
    {u"no-space"_s, part, u"Your disk is full. Free some space and try again."_s},
    {u"max-retries"_s, part, u"max retries exceeded: unexpected EOF"_s},
    {u"digest-mismatch"_s, part, u"digest mismatch"_s},
};

// One row for each fault.
void addRows(const QList<QList<Faults>> &lists)
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<Content>("content");
    QTest::addColumn<QString>("sentence");
    for (const QList<Faults> &list : lists) {
        for (const Faults &faults : list) {
            for (const QString &fault : faults.names.split(u' '))
                QTest::newRow(qPrintable(fault)) << fault << faults.content << faults.sentence;
        }
    }
}

} // namespace

// The ways in which the stand-in engine can fail, in everything that is asked of it: the user is told what
// there is to tell, nothing hangs, what was written stays, and once the fault is over all works again.
class EngineFaultsTest : public QObject
{
    Q_OBJECT

    std::optional<AppUnderTest> m_app;
    int m_models = 0;

    AppState &app() { return **m_app; }

    // Does what the user asked for to its end; what the banner says then, which is empty for nothing.
    QString toldBy(void (AppState::*wish)(const QString &), const QString &model)
    {
        app().setBanner(std::nullopt);
        (app().*wish)(model);
        return AppUnderTest::settles(patience) ? app().banner().value_or(QString()) : u"It does not end."_s;
    }

private Q_SLOTS:
    void initTestCase() { m_app.emplace(QMap<QString, QString>{{u"DEMO_ENGINE_INSTALLED"_s, u"phi3.5"_s}}); }
    void init()
    {
        m_app->demo.setFaults({});
        app().setBanner(std::nullopt);
    }

    void answers_data() { addRows({answerFaults, takesItsTime ? pauses : QList<Faults>()}); }
    void answers()
    {
        QFETCH(const QString, fault);
        QFETCH(const Content, content);
        QFETCH(const QString, sentence);
        const QString model = u"qwen3:v%1"_s.arg(++m_models);
        m_app->addModel(model);
        m_app->loadModel(model);
        QTRY_VERIFY(app().isInstalled(model) && app().isLoaded(model));

        QStringList faults;
        for (const char *const endpoint : {"tags", "ps", "show", "generate"})
            faults << QLatin1StringView(endpoint) + u':' + fault;
        if (content != part) // a body that is empty cannot be broken off
            faults << u"delete:"_s + fault;
        m_app->demo.setFaults(faults.join(u','));
        const bool fails = !sentence.isEmpty();
        ::waitFor(app().refresh(), patience);
        // A pass of the state's loop that began before the fault may still bring the lists of then.
        QTRY_COMPARE(app().isInstalled(model), fails || content == whole);
        QTRY_COMPARE(app().isLoaded(model), fails || content == whole);
        QCOMPARE(toldBy(&AppState::loadCapabilities, model), QString());
        QCOMPARE(app().capabilities().contains(model), !fails);
        QCOMPARE(app().capabilities().value(model).contains(u"thinking"_s), content == whole);
        QCOMPARE(toldBy(&AppState::unload, model), sentence);
        QCOMPARE(toldBy(&AppState::deleteModel, model), content == part ? QString() : sentence);

        m_app->demo.setFaults({});
        app().deleteModel(model);
        QTRY_VERIFY(!app().isInstalled(model) && app().isInstalled(u"phi3.5"_s));
        QVERIFY(AppUnderTest::settles(patience));
    }

    void chats_data() { addRows({streamFaults, chatFaults}); }
    void chats()
    {
        QFETCH(const QString, fault);
        QFETCH(const Content, content);
        m_app->demo.setFaults(u"chat:"_s + fault);
        const QUuid id = m_app->newConversation();
        const QString text = u"Grüße, 世界! 1234567 "_s.repeated(20).trimmed();
        app().send(u"echo "_s + text, id);
        if (fault.startsWith("stall"_L1)) {
            QTRY_VERIFY(content == part ? !m_app->contents(id).value(1).isEmpty()
                                        : !m_app->demo.requests(u"/api/chat"_s).isEmpty());
            app().stopGenerating();
        }
        QVERIFY(m_app->replyEnds());
        QTEST(app().banner().value_or(QString()), "sentence");
        const auto saved = m_app->saved(id);
        QVERIFY(saved);
        const QList<ChatMessage> messages = saved->messages;
        QCOMPARE(messages.size(), content == nothing ? 1 : 2);
        QCOMPARE(messages.first().content, u"echo "_s + text);
        const QString last = messages.last().content;
        QVERIFY(content == whole ? last == text : last != text && !last.isEmpty());

        m_app->demo.setFaults({});
        app().regenerate(id);
        QVERIFY(m_app->replyEnds());
        QCOMPARE(m_app->saved(id)->messages.last().content, text);
    }

    void pulls_data() { addRows({pullFaults}); }
    void pulls()
    {
        QFETCH(const QString, fault);
        QFETCH(const Content, content);
        QFETCH(const QString, sentence);
        const QString model = u"m"_s;
        m_app->demo.call("DELETE", u"/api/delete"_s, R"({"model":"m"})");
        m_app->demo.setFaults(u"pull:"_s + fault);
        m_app->demo.call("DELETE", u"/demo/requests"_s);
        app().queue().enqueue(model, {});
        if (fault.startsWith("stall"_L1)) {
            QTRY_VERIFY(!m_app->demo.requests(u"/api/pull"_s).isEmpty());
            app().queue().cancel(model);
        }
        const auto ended = [this, &model] {
            const DownloadItem *const item = app().queue().item(model);
            return !item || item->phase.kind == Phase::failed || item->phase.kind == Phase::cancelled;
        };
        QVERIFY(QTest::qWaitFor(ended, 30'000));
        const DownloadItem *const item = app().queue().item(model);
        QCOMPARE(item == nullptr, content == whole);
        const QString told = item ? item->phase.message : QString();
        QCOMPARE(told.section(u", file must"_s, 0, 0), sentence); // what follows is the value of some hash
        QCOMPARE(app().banner(), std::nullopt);

        m_app->demo.setFaults({});
        app().queue().enqueue(model, {});
        QTRY_VERIFY(!app().queue().item(model));
        QTRY_VERIFY(app().isInstalled(model));
    }
};

QTEST_GUILESS_MAIN(EngineFaultsTest)
#include "tst_enginefaults.moc"
