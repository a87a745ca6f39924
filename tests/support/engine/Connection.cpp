#include "Connection.h"

#include "Sockets.h"

#include <algorithm>
#include <cerrno>
#include <thread>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace demo {

using Clock = std::chrono::steady_clock;

Connection::Connection(int clientSocket, int serverSocket, std::string clientAddress)
    : m_client(clientSocket),
      m_server(serverSocket),
      m_wakePipe(makePipe()),
      m_clientAddress(std::move(clientAddress))
{
    for (const int socket : {m_client, m_server}) {
        makeNonBlocking(socket);
        sendWithoutDelay(socket);
    }
}

Connection::~Connection()
{
    for (const int descriptor : {m_client, m_server, m_wakePipe[0], m_wakePipe[1]}) {
        closeDescriptor(descriptor);
    }
}

void Connection::run()
{
    while (turn()) {
    }
    letServerFinish();
}

void Connection::beginRequest()
{
    const std::lock_guard lock(m_mutex);
    if (!m_orders.cutNow) {
        m_orders = Orders();
    }
}

void Connection::setShape(Shape shape, std::chrono::microseconds pause)
{
    const std::lock_guard lock(m_mutex);
    m_orders.shape = shape;
    m_orders.pause = pause;
}

void Connection::endWith(Ending ending)
{
    const std::lock_guard lock(m_mutex);
    m_orders.ending = ending;
}

void Connection::cut(Ending ending, std::string lastWords)
{
    {
        const std::lock_guard lock(m_mutex);
        m_orders.ending = ending;
        m_orders.cutNow = true;
        m_orders.lastWords = std::move(lastWords);
    }
    wake();
}

bool Connection::clientGone() const
{
    const std::lock_guard lock(m_mutex);
    return m_gone;
}

bool Connection::waitFor(std::chrono::nanoseconds duration) const
{
    return waitUntil(Clock::now() + duration);
}

bool Connection::waitUntil(Clock::time_point time) const
{
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_until(lock, time, [this] { return m_gone; });
}

Connection::Orders Connection::orders() const
{
    const std::lock_guard lock(m_mutex);
    return m_orders;
}

void Connection::wake()
{
    const char byte = 0;
    // A full pipe wakes just as well.
    [[maybe_unused]] const ssize_t written = ::write(m_wakePipe[1], &byte, 1);
}

Connection::Progress Connection::fill(int socket, Buffer &buffer)
{
    if (buffer.isEmpty()) {
        buffer.begin = buffer.end = 0;
    }
    const ssize_t count =
        ::recv(socket, buffer.bytes.data() + buffer.end, buffer.bytes.size() - buffer.end, 0);
    if (count > 0) {
        buffer.end += static_cast<std::size_t>(count);
        return Progress::moved;
    }
    if (count == 0) {
        return Progress::ended;
    }
    return errno == EAGAIN || errno == EINTR ? Progress::moved : Progress::failed;
}

Connection::Progress Connection::drain(int socket, Buffer &buffer, std::size_t most)
{
    const std::size_t length = std::min(buffer.size(), most);
    const ssize_t count = ::send(socket, buffer.bytes.data() + buffer.begin, length, 0);
    if (count >= 0) {
        buffer.begin += static_cast<std::size_t>(count);
        return Progress::moved;
    }
    return errno == EAGAIN || errno == EINTR ? Progress::moved : Progress::failed;
}

Connection::Progress Connection::sendToClient(const Orders &orders)
{
    if (orders.shape == Shape::plain) {
        return drain(m_client, m_toClient, m_toClient.size());
    }
    std::size_t piece = 1;
    if (orders.shape == Shape::cutAnywhere) {
        m_pieceSeed = m_pieceSeed * 1103515245U + 12345U;
        piece = 1 + (m_pieceSeed >> 16) % 23;
    }
    const Progress progress = drain(m_client, m_toClient, piece);
    m_nextSend = Clock::now() + orders.pause;
    if (orders.pause < std::chrono::milliseconds(1)) {
        // Too short for the timeout of a poll.
        std::this_thread::sleep_for(orders.pause);
    }
    return progress;
}

int Connection::pollTimeout(const Orders &orders) const
{
    if (m_toClient.isEmpty() || orders.shape == Shape::plain) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_nextSend - Clock::now());
    return static_cast<int>(std::max<long long>(left.count(), 0));
}

bool Connection::turn()
{
    const Orders orders = this->orders();
    if (orders.cutNow) {
        finish(orders, false);
        return false;
    }
    if (m_serverEnded && m_toClient.isEmpty()) {
        finish(orders, false);
        return false;
    }
    const bool mayRead = m_toServer.end < m_toServer.bytes.size() || m_toServer.isEmpty();
    const bool mayFetch =
        !m_serverEnded && (m_toClient.end < m_toClient.bytes.size() || m_toClient.isEmpty());
    const bool maySend =
        !m_toClient.isEmpty() && (orders.shape == Shape::plain || Clock::now() >= m_nextSend);
    const auto events = [](bool in, bool out) {
        return static_cast<short>((in ? POLLIN : 0) | (out ? POLLOUT : 0));
    };
    std::array<pollfd, 3> watched{
        pollfd{m_client, events(mayRead, maySend), 0},
        // An ended server would report its end for ever.
        pollfd{m_serverEnded ? -1 : m_server, events(mayFetch, !m_toServer.isEmpty()), 0},
        pollfd{m_wakePipe[0], POLLIN, 0},
    };
    if (::poll(watched.data(), watched.size(), maySend ? -1 : pollTimeout(orders)) < 0 && errno != EINTR) {
        return false;
    }
    if ((watched[2].revents & POLLIN) != 0) {
        std::array<char, 64> ignored;
        [[maybe_unused]] const ssize_t count = ::read(m_wakePipe[0], ignored.data(), ignored.size());
    }
    const auto clientEvents = watched[0].revents;
    bool clientEnded = (clientEvents & (POLLERR | POLLNVAL)) != 0;
    if (!clientEnded && mayRead && (clientEvents & (POLLIN | POLLHUP)) != 0) {
        clientEnded = fill(m_client, m_toServer) != Progress::moved;
    }
    if (!clientEnded && maySend && (clientEvents & POLLOUT) != 0) {
        clientEnded = sendToClient(orders) == Progress::failed;
    }
    if (clientEnded) {
        finish(orders, true);
        return false;
    }
    const auto serverEvents = watched[1].revents;
    if ((serverEvents & POLLOUT) != 0) {
        drain(m_server, m_toServer, m_toServer.size());
    }
    if (mayFetch && (serverEvents & (POLLIN | POLLHUP | POLLERR)) != 0) {
        m_serverEnded = fill(m_server, m_toClient) != Progress::moved;
    }
    return true;
}

void Connection::finish(const Orders &orders, bool clientEnded)
{
    if (!clientEnded) {
        const std::string lastWords =
            orders.ending == Ending::badChunk ? std::string("zz\r\nnot a chunk\r\n") : orders.lastWords;
        [[maybe_unused]] const ssize_t count = ::send(m_client, lastWords.data(), lastWords.size(), 0);
        if (orders.ending == Ending::reset) {
            resetOnClose(m_client);
        }
    }
    closeDescriptor(std::exchange(m_client, -1));
    {
        const std::lock_guard lock(m_mutex);
        m_gone = true;
    }
    m_changed.notify_all();
}

// A request that arrived whole is answered even when nobody waits for the answer, as the engine does.
void Connection::letServerFinish()
{
    while (!m_toServer.isEmpty()) {
        pollfd watched{m_server, POLLOUT, 0};
        if (::poll(&watched, 1, 1000) <= 0 ||
            drain(m_server, m_toServer, m_toServer.size()) == Progress::failed) {
            break;
        }
    }
    ::shutdown(m_server, SHUT_WR);
    while (!m_serverEnded) {
        pollfd watched{m_server, POLLIN, 0};
        if (::poll(&watched, 1, -1) < 0 && errno != EINTR) {
            return;
        }
        m_toClient.begin = m_toClient.end = 0;
        m_serverEnded = fill(m_server, m_toClient) != Progress::moved;
    }
}

} // namespace demo
