#include "HostileServer.h"

#include "engine/Sockets.h"

#include <algorithm>
#include <cerrno>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

HostileServer::HostileServer() : m_stop(demo::makePipe())
{
    reset();
    m_listener = demo::listenOn("127.0.0.1", 0);
    if (m_listener < 0)
        qFatal("No port to listen on");
    m_acceptor = std::thread([this] { acceptLoop(); });
}

HostileServer::~HostileServer()
{
    // Nobody reads it, so it wakes every thread.
    [[maybe_unused]] const ssize_t written = ::write(m_stop[1], "", 1);
    m_acceptor.join();
    for (std::thread &connection : m_connections)
        connection.join();
    for (const int descriptor : {m_listener, m_stop[0], m_stop[1]})
        demo::closeDescriptor(descriptor);
}

int HostileServer::port() const
{
    return demo::localPort(m_listener);
}

WireAnswer HostileServer::sound(const QByteArray &body)
{
    return {.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                     QByteArray::number(body.size()) + "\r\n\r\n" + body,
            .end = WireEnd::keep};
}

void HostileServer::set(const QString &endpoint, const WireAnswer &answer)
{
    const std::lock_guard lock(m_mutex);
    m_answers[endpoint] = answer;
}

void HostileServer::reset()
{
    ++m_period;
    const QByteArray model = R"({"name":"sound:latest","size":1000,"details":{"family":"llama"}})";
    set(u"version"_s, sound(R"({"version":"0.32.15"})"));
    set(u"tags"_s, sound("{\"models\":[" + model + "]}"));
    set(u"ps"_s, sound("{\"models\":[" + model + "]}"));
    set(u"show"_s, sound(R"({"license":"MIT","capabilities":["completion"]})"));
    set(u"generate"_s, sound("{}"));
    set(u"delete"_s, sound({}));
    set(u"pull"_s, sound("{\"status\":\"success\"}\n"));
    set(u"chat"_s, sound("{\"message\":{\"content\":\"yes\"}}\n{\"done\":true}\n"));
}

WireAnswer HostileServer::answerOf(const QString &endpoint)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_answers.find(endpoint);
    return found == m_answers.end() ? WireAnswer() : found->second;
}

void HostileServer::acceptLoop()
{
    std::string address;
    while (waitFor(m_listener, POLLIN)) {
        const int socket = demo::acceptFrom(m_listener, address);
        if (socket < 0)
            continue;
        demo::makeNonBlocking(socket);
        m_connections.emplace_back([this, socket] { serve(socket); });
    }
}

void HostileServer::serve(int socket)
{
    QByteArray buffer;
    QString endpoint;
    while (readRequest(socket, buffer, endpoint)) {
        if (endpoint != "version"_L1)
            ++m_requests;
        const int period = m_period;
        const WireAnswer answer = answerOf(endpoint);
        const bool sent = send(socket, answer, period);
        if (answer.end == WireEnd::reset)
            demo::resetOnClose(socket);
        char byte = 0;
        while (sent && answer.end == WireEnd::silence && waitIn(period, socket, POLLIN)) {
            if (::recv(socket, &byte, 1, 0) <= 0)
                break;
        }
        if (!sent || answer.end != WireEnd::keep)
            break;
    }
    demo::closeDescriptor(socket);
}

bool HostileServer::readRequest(int socket, QByteArray &buffer, QString &endpoint)
{
    std::array<char, 65536> bytes;
    for (;;) {
        const qsizetype headEnd = buffer.indexOf("\r\n\r\n") + 4;
        if (headEnd >= 4) {
            const QByteArray head = buffer.first(headEnd).toLower();
            const qsizetype mark = head.indexOf("content-length:");
            const qsizetype length =
                mark < 0 ? 0 : head.sliced(mark + 15).split('\r').first().trimmed().toLongLong();
            if (buffer.size() >= headEnd + length) {
                endpoint = QString::fromLatin1(head.split(' ').value(1)).section(u'/', -1);
                buffer.remove(0, headEnd + length);
                return true;
            }
        }
        if (!waitFor(socket, POLLIN))
            return false;
        const ssize_t got = ::recv(socket, bytes.data(), bytes.size(), 0);
        if (got == 0 || (got < 0 && errno != EAGAIN))
            return false;
        buffer.append(bytes.data(), std::max<qsizetype>(got, 0));
    }
}

bool HostileServer::send(int socket, const WireAnswer &answer, int period)
{
    const qsizetype piece = answer.pieceBytes > 0 ? answer.pieceBytes : answer.bytes.size();
    for (qsizetype sent = 0; sent < answer.bytes.size(); sent += piece) {
        if (!sendAll(socket, answer.bytes.constData() + sent, std::min(piece, answer.bytes.size() - sent),
                     period))
            return false;
        if (answer.pieceBytes > 0 && (period != m_period || !waitFor(-1, 0, 1)))
            return false;
    }
    for (qint64 left = answer.tailBytes; left > 0; left -= answer.tail.size()) {
        if (!sendAll(socket, answer.tail.constData(), answer.tail.size(), period))
            return false;
    }
    return true;
}

bool HostileServer::sendAll(int socket, const char *bytes, qsizetype size, int period)
{
    while (size > 0) {
        if (period != m_period)
            return false;
        const ssize_t sent = ::send(socket, bytes, static_cast<std::size_t>(size), MSG_NOSIGNAL);
        if (sent < 0 && errno != EAGAIN)
            return false;
        if (sent < 0 && !waitIn(period, socket, POLLOUT))
            return false;
        bytes += std::max<qsizetype>(sent, 0);
        size -= std::max<qsizetype>(sent, 0);
    }
    return true;
}

bool HostileServer::waitFor(int socket, short what, int milliseconds) const
{
    std::array<pollfd, 2> watched{pollfd{m_stop[0], POLLIN, 0}, pollfd{socket, what, 0}};
    while (::poll(watched.data(), watched.size(), milliseconds) < 0 && errno == EINTR) {
    }
    return watched[0].revents == 0;
}

bool HostileServer::waitIn(int period, int socket, short what) const
{
    constexpr int glance = 20; // ms
    while (period == m_period) {
        if (!waitFor(-1, 0, 0))
            return false;
        pollfd watched{socket, what, 0};
        if (::poll(&watched, 1, glance) > 0)
            return true;
    }
    return false;
}
