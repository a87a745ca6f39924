#include "support/DemoEngine.h"

#include <QJsonDocument>
#include <QNetworkProxy>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTcpSocket>

#include <csignal>

#include <sys/wait.h>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 30'000; // ms

// Reads on until `pattern` has stood in the output; its first capture.
QString waitForOutput(QProcess &process, const QRegularExpression &pattern)
{
    QString output;
    for (;;) {
        const QRegularExpressionMatch match = pattern.match(output);
        if (match.hasMatch())
            return match.captured(1);
        if (!process.waitForReadyRead(patience))
            qFatal("The stand-in engine did not start: %s", qUtf8Printable(output + process.errorString()));
        output += QString::fromUtf8(process.readAll());
    }
}

} // namespace

DemoEngine::DemoEngine(const QMap<QString, QString> &variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, m_folder.path());
    environment.insert(u"OLLAMA_HOST"_s, u"127.0.0.1:0"_s);
    environment.insert(u"OLLAMA_MODELS"_s, modelsFolder());
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
        environment.insert(variable.key(), variable.value());
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
#ifdef Q_OS_LINUX
    // A test program that crashes leaves no engine behind.
    m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
#endif
    m_process.start(QString::fromUtf8(TARNWICK_DEMO_ENGINE), {u"serve"_s});
    static const QRegularExpression listening(u"Listening on \\S*:(\\d+)"_s);
    m_port = waitForOutput(m_process, listening).toInt();
    call("GET", u"/api/version"_s);
}

QMap<QString, QString> DemoEngine::quick(QMap<QString, QString> variables)
{
    const QStringList paces{u"DEMO_ENGINE_READY_MS"_s, u"DEMO_ENGINE_PULL_MS"_s, u"DEMO_ENGINE_LOAD_MS"_s,
                            u"DEMO_ENGINE_UNLOAD_MS"_s, u"DEMO_ENGINE_CHUNK_MS"_s};
    for (const QString &pace : paces) {
        if (!variables.contains(pace))
            variables.insert(pace, u"0"_s);
    }
    return variables;
}

DemoEngine::~DemoEngine()
{
    m_process.terminate();
    if (!m_process.waitForFinished(patience)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

QString DemoEngine::modelsFolder() const
{
    return m_folder.filePath(u"models"_s);
}

void DemoEngine::freeze() const
{
    const auto process = static_cast<pid_t>(m_process.processId());
    ::kill(process, SIGSTOP);
    siginfo_t stopped; // its threads stop some time after the signal was sent
    if (::waitid(P_PID, static_cast<id_t>(process), &stopped, WSTOPPED | WNOWAIT) != 0)
        qFatal("The stand-in engine cannot be stopped");
}

void DemoEngine::thaw() const
{
    ::kill(static_cast<pid_t>(m_process.processId()), SIGCONT);
}

void DemoEngine::setFaults(const QString &faults) const
{
    const QByteArray body = QJsonDocument(QJsonObject{{"faults"_L1, faults}}).toJson();
    const QByteArray answer = call("POST", u"/demo/faults"_s, body);
    if (!QJsonDocument::fromJson(answer).object().contains("faults"_L1))
        qFatal("The stand-in engine refused the faults \"%s\": %s", qUtf8Printable(faults),
               answer.constData());
}

QJsonArray DemoEngine::requests() const
{
    const QByteArray answer = call("GET", u"/demo/requests"_s);
    return QJsonDocument::fromJson(answer).object().value("requests"_L1).toArray();
}

QJsonArray DemoEngine::requests(const QString &path) const
{
    QJsonArray matching;
    const QJsonArray all = requests();
    for (const QJsonValue request : all) {
        if (request["path"_L1] == path)
            matching.append(request);
    }
    return matching;
}

// A socket of its own, blocking: the test's event loop stands still meanwhile.
QByteArray DemoEngine::call(const QByteArray &method, const QString &path, const QByteArray &body) const
{
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(m_port));
    socket.write(method + ' ' + path.toUtf8() + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n" +
                 "Content-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size()) +
                 "\r\n\r\n" + body);
    QByteArray answer;
    while (socket.state() != QAbstractSocket::UnconnectedState && socket.waitForReadyRead(patience))
        answer += socket.readAll();
    answer += socket.readAll();
    const qsizetype end = answer.indexOf("\r\n\r\n");
    if (end < 0)
        qFatal("The stand-in engine did not answer %s %s", method.constData(), qUtf8Printable(path));
    return answer.sliced(end + 4);
}
