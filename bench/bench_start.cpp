// What the program costs to start and to keep: time to its first painted frame and memory, against a program
// that links the same libraries, shows an empty window and reads, parses and keeps the same conversations;
// and what it does while nobody uses it, against a program that only makes the same two requests every four
// seconds. The program itself is measured as it is, from outside, without a display.
#include "Figures.h"
#include "core/chat/ConversationFile.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QSettings>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include <sys/prctl.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int conversations = 1000;
constexpr int messagesEach = 20;
constexpr int charactersEach = 400;
constexpr int rounds = 15;
constexpr std::chrono::seconds settling(30);
constexpr std::chrono::seconds watching(60);
constexpr double mostTime = 1.5;
constexpr double mostMemory = 1.3;
constexpr double mostRestCpu = 0.3; // seconds
constexpr double mostSwitches = 2.0;
constexpr double mostSwitchesOff = 1.0; // a second

// ---- the programs it is compared with

struct Message
{
    QString id, role, content, thinking, createdAt;
};

struct Kept
{
    QString id, title, model, createdAt, updatedAt;
    std::vector<Message> messages;
};

Kept readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read", qUtf8Printable(path));
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    Kept kept{object["id"_L1].toString(),        object["title"_L1].toString(),
              object["model"_L1].toString(),     object["createdAt"_L1].toString(),
              object["updatedAt"_L1].toString(), {}};
    const QJsonArray messages = object["messages"_L1].toArray();
    for (const QJsonValue message : messages) {
        kept.messages.push_back({message["id"_L1].toString(), message["role"_L1].toString(),
                                 message["content"_L1].toString(), message["thinking"_L1].toString(),
                                 message["createdAt"_L1].toString()});
    }
    return kept;
}

// An empty window; with `folder`, over all that the conversations in it say.
int showWindow(int argc, char **argv, const QString &folder)
{
    const QApplication application(argc, argv);
    std::vector<Kept> kept;
    if (!folder.isEmpty()) {
        const QDir chats(folder);
        const QStringList names = chats.entryList(QDir::Files, QDir::Name);
        for (const QString &name : names)
            kept.push_back(readFile(chats.filePath(name)));
    }
    QWidget window;
    window.resize(1100, 720);
    window.show();
    return QApplication::exec();
}

int makeRequests(int argc, char **argv, const QString &port)
{
    const QCoreApplication application(argc, argv);
    QNetworkAccessManager network;
    const auto get = [&](const QString &path) {
        QNetworkReply *reply =
            network.get(QNetworkRequest(QUrl(u"http://127.0.0.1:%1/api/%2"_s.arg(port, path))));
        QObject::connect(reply, &QNetworkReply::finished, reply, [reply] {
            reply->readAll();
            reply->deleteLater();
        });
    };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        get(u"tags"_s);
        get(u"ps"_s);
    });
    timer.start(std::chrono::seconds(4));
    return QCoreApplication::exec();
}

// ---- a profile, and the programs as processes

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

QString chatsOf(const QTemporaryDir &profile)
{
    return profile.filePath(u"Tarnwick/chats"_s);
}

void fill(const QTemporaryDir &profile, bool serverWanted)
{
    {
        QSettings settings(profile.filePath(u"settings.ini"_s), QSettings::IniFormat);
        settings.setValue(u"manualEnginePath"_s, QStringLiteral(TARNWICK_DEMO_ENGINE));
        settings.setValue(u"port"_s, freePort());
        settings.setValue(u"guideDone"_s, true);
        settings.setValue(u"serverWanted"_s, serverWanted);
    }
    QDir().mkpath(chatsOf(profile));
    const QString text =
        u"Some words of a message, some of them longer. "_s.repeated(9).first(charactersEach);
    for (int i = 0; i < conversations; ++i) {
        Conversation conversation = Conversation::make(u"qwen3:4b"_s);
        conversation.title = u"Conversation %1"_s.arg(i);
        for (int m = 0; m < messagesEach; ++m)
            conversation.messages.append(ChatMessage::make(m % 2 ? u"assistant"_s : u"user"_s, text));
        QFile file(chatsOf(profile) + u'/' + ConversationFile::name(conversation.id));
        const std::optional<QByteArray> content = ConversationFile::encode(conversation);
        if (!content || !file.open(QIODevice::WriteOnly) || file.write(*content) != content->size())
            qFatal("The conversations cannot be written");
    }
}

struct Command
{
    QString program;
    QStringList arguments;
};

Command theProgram(const QTemporaryDir &profile)
{
    return {QStringLiteral(TARNWICK_PROGRAM), {u"--profile"_s, profile.path()}};
}

Command ourselves(const QStringList &arguments)
{
    return {QCoreApplication::applicationFilePath(), arguments};
}

std::unique_ptr<QProcess> start(const Command &command, const QString &loggingRules = {})
{
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    environment.insert(u"QT_FORCE_STDERR_LOGGING"_s, u"1"_s);
    environment.insert(u"QT_LOGGING_RULES"_s, loggingRules);
    process->setProcessEnvironment(environment);
    process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    process->setStandardOutputFile(QProcess::nullDevice());
    if (loggingRules.isEmpty())
        process->setStandardErrorFile(QProcess::nullDevice());
    process->setReadChannel(QProcess::StandardError);
    process->start(command.program, command.arguments, QIODevice::ReadOnly);
    if (!process->waitForStarted())
        qFatal("%s does not start", qUtf8Printable(command.program));
    return process;
}

void end(QProcess &process)
{
    process.terminate();
    if (!process.waitForFinished())
        qFatal("%s does not end", qUtf8Printable(process.program()));
}

// Milliseconds from the start of the process until Qt, asked to tell of its painting, hands over a picture.
double firstFrame(const Command &command)
{
    QElapsedTimer clock;
    clock.start();
    const auto process = start(command, u"qt.widgets.painting.info=true"_s);
    QByteArray told;
    while (!told.contains("Flushing")) {
        if (!process->waitForReadyRead(60'000))
            qFatal("%s paints nothing: %s", qUtf8Printable(command.program), told.constData());
        told += process->readAllStandardError();
    }
    const double time = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    end(*process);
    return time;
}

// ---- what Linux tells about a process

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The number behind `name`.
double field(const QByteArray &status, const char *name)
{
    const qsizetype place = status.indexOf(name);
    if (place < 0)
        qFatal("A process has gone, or tells no %s", name);
    return std::strtod(status.constData() + place + qsizetype(std::strlen(name)), nullptr);
}

double residentMegabytes(const QProcess &process)
{
    return field(contentOf(u"/proc/%1/status"_s.arg(process.processId())), "VmRSS:") * 1024 / 1e6;
}

// All threads together.
struct Activity
{
    double cpu = 0; // seconds
    double switches = 0;
};

// What a process does from now on. Asked every second, so that little is lost of threads that end meanwhile.
class Watch
{
public:
    explicit Watch(const QProcess &process) : m_threads(u"/proc/%1/task"_s.arg(process.processId()))
    {
        look();
        m_spent = {};
    }

    void look()
    {
        const QStringList ids = m_threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        for (const QString &id : ids) {
            const QByteArray status = contentOf(m_threads.filePath(id + "/status"_L1));
            const QByteArray times = contentOf(m_threads.filePath(id + "/schedstat"_L1));
            if (status.isEmpty() || times.isEmpty())
                continue;
            const Activity now{times.split(' ').first().toDouble() / 1e9,
                               field(status, "\nvoluntary_ctxt_switches:")};
            Activity &before = m_seen[id];
            m_spent.cpu += now.cpu - before.cpu;
            m_spent.switches += now.switches - before.switches;
            before = now;
        }
    }

    const Activity &spent() const { return m_spent; }

private:
    QDir m_threads;
    QHash<QString, Activity> m_seen;
    Activity m_spent;
};

// ---- the measurements

bool report(const char *what, double value, double most)
{
    std::printf("%-58s %8.2f   at most %.2f   %s\n", what, value, most, value <= most ? "ok" : "MISSED");
    return value <= most;
}

bool measureStart(const QTemporaryDir &profile)
{
    const Command programs[] = {theProgram(profile), ourselves({u"--read"_s, chatsOf(profile)}),
                                ourselves({u"--empty"_s})};
    std::vector<double> times[3];
    for (int round = -1; round < rounds; ++round) { // the first one warms the caches
        for (int i = 0; i < 3; ++i) {
            const double time = firstFrame(programs[i]);
            if (round >= 0)
                times[i].push_back(time);
        }
    }
    std::printf("first frame: %.0f ms, reference %.0f ms, empty window %.0f ms\n", median(times[0]),
                median(times[1]), median(times[2]));
    return report("time to the first frame, to the reference's", median(times[0]) / median(times[1]),
                  mostTime);
}

std::unique_ptr<QProcess> startEngine(const QTemporaryDir &folder, quint16 port)
{
    auto engine = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"OLLAMA_HOST"_s, u"127.0.0.1:%1"_s.arg(port));
    environment.insert(u"OLLAMA_MODELS"_s, folder.path());
    engine->setProcessEnvironment(environment);
    engine->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    engine->setStandardErrorFile(QProcess::nullDevice());
    engine->setStandardOutputFile(QProcess::nullDevice());
    engine->start(QStringLiteral(TARNWICK_DEMO_ENGINE), {u"serve"_s});
    if (!engine->waitForStarted())
        qFatal("The stand-in engine does not start");
    return engine;
}

bool measureRest(const QTemporaryDir &on, const QTemporaryDir &off)
{
    const QTemporaryDir models;
    const quint16 port = freePort();
    const auto engine = startEngine(models, port);
    const auto program = start(theProgram(on));
    const auto reading = start(ourselves({u"--read"_s, chatsOf(on)}));
    const auto empty = start(ourselves({u"--empty"_s}));
    const auto requests = start(ourselves({u"--requests"_s, QString::number(port)}));
    const auto idle = start(theProgram(off));
    std::this_thread::sleep_for(settling);

    const double memory = residentMegabytes(*program);
    const double reference = residentMegabytes(*reading);
    std::printf("memory: %.1f MB, reference %.1f MB, empty window %.1f MB\n", memory, reference,
                residentMegabytes(*empty));
    bool ok = report("resident memory, to the reference's", memory / reference, mostMemory);

    Watch watches[] = {Watch(*program), Watch(*requests), Watch(*idle)};
    for (std::chrono::seconds passed(0); passed < watching; ++passed) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        for (Watch &watch : watches)
            watch.look();
    }
    const Activity spent[] = {watches[0].spent(), watches[1].spent(), watches[2].spent()};
    const double seconds = double(watching.count());
    std::printf("at rest: %.0f switches, reference %.0f; with the engine off %.0f and %.3f s\n",
                spent[0].switches, spent[1].switches, spent[2].switches, spent[2].cpu);
    ok = report("processor time in a minute of rest, in seconds", spent[0].cpu, mostRestCpu) && ok;
    ok = report("voluntary context switches, to the reference's", spent[0].switches / spent[1].switches,
                mostSwitches) &&
         ok;
    ok = report("voluntary context switches a second, engine off", spent[2].switches / seconds,
                mostSwitchesOff) &&
         ok;
    for (const auto &process :
         {program.get(), reading.get(), empty.get(), requests.get(), idle.get(), engine.get()})
        end(*process);
    return ok;
}

} // namespace

int main(int argc, char **argv)
{
    const QString mode = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    const QString argument = QString::fromLocal8Bit(argc > 2 ? argv[2] : "");
    if (mode == "--read"_L1 || mode == "--empty"_L1)
        return showWindow(argc, argv, argument);
    if (mode == "--requests"_L1)
        return makeRequests(argc, argv, argument);

    const QCoreApplication application(argc, argv);
    const QTemporaryDir on;
    const QTemporaryDir off;
    fill(on, true);
    fill(off, false);
    const bool starts = measureStart(on);
    const bool rests = measureRest(on, off);
    return starts && rests ? EXIT_SUCCESS : EXIT_FAILURE;
}
