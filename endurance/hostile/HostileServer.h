// Stands where the engine stands and answers each of its endpoints with the very bytes it was given, right or
// wrong. Runs on threads of its own.
#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <atomic>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

// How a connection goes on behind an answer.
enum class WireEnd
{
    keep, // it stays open for the next request
    close,
    reset,
    silence // nothing more comes, and it stays open
};

// What goes out on one connection.
struct WireAnswer
{
    QByteArray bytes;     // head and body
    QByteArray tail = {}; // sent behind them again and again
    qint64 tailBytes = 0; // until so many bytes of it are out
    int pieceBytes = 0;   // sent in pieces of so many bytes, a millisecond apart; 0 is all at once
    WireEnd end = WireEnd::close;
};

class HostileServer
{
public:
    HostileServer();
    // Cuts all connections.
    ~HostileServer();
    HostileServer(const HostileServer &) = delete;
    HostileServer &operator=(const HostileServer &) = delete;

    int port() const;

    // How `endpoint` ("tags", "chat", …) answers from now on.
    void set(const QString &endpoint, const WireAnswer &answer);
    // All of them answer as an engine does that has one model, and what goes on in another way is cut.
    void reset();

    // How many requests have come that were not to `version`.
    int requests() const { return m_requests; }

    static WireAnswer sound(const QByteArray &body);

private:
    void acceptLoop();
    void serve(int socket);
    bool readRequest(int socket, QByteArray &buffer, QString &endpoint);
    bool send(int socket, const WireAnswer &answer, int period);
    bool sendAll(int socket, const char *bytes, qsizetype size, int period);
    // False once the server ends.
    bool waitFor(int socket, short what, int milliseconds = -1) const;
    // False once the server ends, or answers in another way than it did in that period.
    bool waitIn(int period, int socket, short what) const;
    WireAnswer answerOf(const QString &endpoint);

    int m_listener = -1;
    std::array<int, 2> m_stop;
    std::atomic<int> m_requests = 0;
    std::atomic<int> m_period = 0; // the number of resets
    std::mutex m_mutex;
    std::map<QString, WireAnswer> m_answers;
    std::vector<std::thread> m_connections;
    std::thread m_acceptor;
};
