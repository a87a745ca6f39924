// What reading a chat's stream through OllamaClient costs, compared in one run with the least that any
// program on QNetworkAccessManager would spend: a loop that parses each line. The server is another process.
#include "Figures.h"
#include "core/api/OllamaClient.h"
#include "platform/async/Launch.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QStandardPaths>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int lines = 100'000;
constexpr int rounds = 9;
constexpr double mostCpu = 1.3;
constexpr double mostGrowth = 2.0; // MB

// ---- the server: every line a chunk of its own, written in pieces of 64 KiB

void append(std::string &body, std::string_view line)
{
    char size[16];
    const int length = std::snprintf(size, sizeof size, "%zx\r\n", line.size());
    body.append(size, static_cast<std::size_t>(length)).append(line).append("\r\n");
}

std::string answerOf(int count)
{
    std::string answer = "HTTP/1.1 200 OK\r\nContent-Type: application/x-ndjson\r\n"
                         "Transfer-Encoding: chunked\r\n\r\n";
    for (int i = 0; i < count; ++i) {
        append(answer, R"({"model":"llama3.2:latest","created_at":"2026-08-21T16:48:22.)" +
                           std::to_string(100'000 + i % 900'000) +
                           R"(Z","message":{"role":"assistant","content":" word"},"done":false})"
                           "\n");
    }
    append(answer, R"({"model":"llama3.2:latest","created_at":"2026-08-21T16:48:23Z","message":{"role":)"
                   R"("assistant","content":""},"done":true,"eval_count":282,"eval_duration":4535599000})"
                   "\n");
    return answer + "0\r\n\r\n";
}

// The model's name says how many lines are wanted.
int wantedLines(int connection)
{
    constexpr std::string_view mark = R"("model":")";
    std::string request;
    for (;;) {
        char piece[4096];
        const ssize_t size = ::read(connection, piece, sizeof piece);
        if (size <= 0)
            return -1;
        request.append(piece, static_cast<std::size_t>(size));
        const std::size_t name = request.find(mark);
        if (name != std::string::npos && request.find('}', name) != std::string::npos)
            return std::atoi(request.c_str() + name + mark.size());
    }
}

void serve(int connection)
{
    for (int count = wantedLines(connection); count >= 0; count = wantedLines(connection)) {
        const std::string answer = answerOf(count);
        for (std::size_t start = 0; start < answer.size();) {
            const std::size_t size = std::min<std::size_t>(64 * 1024, answer.size() - start);
            const ssize_t sent = ::send(connection, answer.data() + start, size, MSG_NOSIGNAL);
            if (sent <= 0)
                break;
            start += static_cast<std::size_t>(sent);
        }
    }
    ::close(connection);
}

struct Server
{
    pid_t process = -1;
    int port = 0;
};

Server startServer()
{
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    if (::bind(listener, generic, size) != 0 || ::listen(listener, 8) != 0 ||
        ::getsockname(listener, generic, &size) != 0)
        std::exit(2);
    const pid_t process = ::fork();
    if (process != 0) {
        ::close(listener);
        return {process, ntohs(address.sin_port)};
    }
#ifdef Q_OS_LINUX
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
#endif
    for (;;) {
        const int connection = ::accept(listener, nullptr, nullptr);
        if (connection < 0)
            std::_Exit(0);
        std::thread(serve, connection).detach();
    }
}

// ---- the readers

struct Tally
{
    int records = 0;
    qsizetype letters = 0;

    bool operator==(const Tally &) const = default;
};

Task<> readThrough(Stream<ChatChunk> stream, Tally *tally, QEventLoop *loop)
{
    while (const std::optional<ChatChunk> chunk = co_await stream.next()) {
        ++tally->records;
        tally->letters += chunk->content.size();
    }
    loop->quit();
}

Tally readWithClient(int port, int count)
{
    Tally tally;
    QEventLoop loop;
    const ChatRequest request{.model = QString::number(count), .messages = {{u"user"_s, u"hello"_s}}};
    launch([&] { return readThrough(OllamaClient(port).chat(request), &tally, &loop); });
    loop.exec();
    return tally;
}

Tally readBare(int port, int count)
{
    static QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(u"http://127.0.0.1:%1/api/chat"_s.arg(port)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    QNetworkReply *const reply = manager.post(request, "{\"model\":\"" + QByteArray::number(count) + "\"}");
    Tally tally;
    QByteArray rest;
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [&] {
        rest += reply->readAll();
        qsizetype start = 0;
        for (qsizetype end = rest.indexOf('\n'); end >= 0; end = rest.indexOf('\n', start)) {
            const QByteArray line = QByteArray::fromRawData(rest.constData() + start, end - start);
            const QJsonObject object = QJsonDocument::fromJson(line).object();
            ++tally.records;
            tally.letters += object["message"_L1]["content"_L1].toString().size();
            start = end + 1;
        }
        rest.remove(0, start);
    });
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    reply->deleteLater();
    return tally;
}

using Reader = Tally (*)(int port, int count);

// ---- measuring

double costOf(Reader reader, int port)
{
    const double start = processTime(RUSAGE_SELF);
    const Tally tally = reader(port, lines);
    const double cost = processTime(RUSAGE_SELF) - start;
    if (tally != Tally{lines + 1, 5 * lines}) {
        std::fprintf(stderr, "%d records and %lld letters arrived\n", tally.records,
                     static_cast<long long>(tally.letters));
        std::exit(2);
    }
    return cost;
}

double costOfCurl(int port)
{
    const double start = processTime(RUSAGE_CHILDREN);
    QProcess curl;
    curl.setStandardOutputFile(QProcess::nullDevice());
    curl.start(u"curl"_s, {u"-sN"_s, u"-d"_s, u"{\"model\":\"%1\"}"_s.arg(lines),
                           u"http://127.0.0.1:%1/api/chat"_s.arg(port)});
    curl.waitForFinished(-1);
    return processTime(RUSAGE_CHILDREN) - start;
}

// In a process of its own, since a process knows its own peak alone.
double peakMegabytes(const QString &reader, int port, int count)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {u"--peak"_s, reader, QString::number(port), QString::number(count)});
    process.waitForFinished(-1);
    return process.readAllStandardOutput().toDouble() / 1e6;
}

qint64 peakBytes()
{
#ifdef Q_OS_LINUX
    // What getrusage() tells begins with what the parent used when it forked.
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const QByteArray figure = text.sliced(text.indexOf("VmHWM:") + 6);
    return figure.first(figure.indexOf("kB")).trimmed().toLongLong() * 1024;
#else
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
#endif
}

int printPeak(const QStringList &arguments)
{
    const Reader reader = arguments.at(2) == "client"_L1 ? readWithClient : readBare;
    reader(arguments.at(3).toInt(), arguments.at(4).toInt());
    std::printf("%lld\n", static_cast<long long>(peakBytes()));
    return 0;
}

bool measureCpu(int port)
{
    std::vector<double> client;
    std::vector<double> bare;
    std::vector<double> curl;
    const bool hasCurl = !QStandardPaths::findExecutable(u"curl"_s).isEmpty();
    costOf(readBare, port);
    costOf(readWithClient, port);
    for (int round = 0; round < rounds; ++round) {
        const bool clientFirst = round % 2 == 0;
        if (clientFirst)
            client.push_back(costOf(readWithClient, port));
        bare.push_back(costOf(readBare, port));
        if (!clientFirst)
            client.push_back(costOf(readWithClient, port));
        if (hasCurl)
            curl.push_back(costOfCurl(port));
    }
    const double ratio = median(client) / median(bare);
    std::printf("lines per stream: %d, rounds: %d, medians\n", lines, rounds);
    std::printf("CPU of a bare loop: %.0f ms\n", median(bare));
    std::printf("CPU of OllamaClient: %.0f ms\n", median(client));
    if (hasCurl)
        std::printf("CPU of curl -sN, which parses nothing: %.0f ms\n", median(curl));
    std::printf("OllamaClient to bare loop: %.2f (at most %.1f)\n", ratio, mostCpu);
    return ratio <= mostCpu;
}

bool measureMemory(int port)
{
    bool flat = true;
    for (const QString &reader : {u"bare"_s, u"client"_s}) {
        const double few = peakMegabytes(reader, port, lines / 10);
        const double many = peakMegabytes(reader, port, lines);
        std::printf("peak memory, %s: %.1f MB for %d lines, %.1f MB for %d lines\n", qUtf8Printable(reader),
                    few, lines / 10, many, lines);
        if (reader == "client"_L1)
            flat = many - few <= mostGrowth;
    }
    std::printf("growth through OllamaClient: at most %.1f MB: %s\n", mostGrowth, flat ? "yes" : "no");
    return flat;
}

} // namespace

int main(int argc, char **argv)
{
    const bool parent = argc == 1;
    // Forked before Qt has threads.
    const Server server = parent ? startServer() : Server{};
    const QCoreApplication application(argc, argv);
    if (!parent)
        return printPeak(QCoreApplication::arguments());
    const bool cheap = measureCpu(server.port);
    const bool flat = measureMemory(server.port);
    ::kill(server.process, SIGTERM);
    ::waitpid(server.process, nullptr, 0);
    return cheap && flat ? 0 : 1;
}
