#include "FaultRelay.h"

#include "Sockets.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace demo {

FaultRelay::FaultRelay() : m_stopPipe(makePipe()) {}

FaultRelay::~FaultRelay()
{
    stop();
    closeDescriptor(m_stopPipe[0]);
    closeDescriptor(m_stopPipe[1]);
}

int FaultRelay::listen(const std::string &host, int port)
{
    m_listener = listenOn(host, port);
    return m_listener < 0 ? errno : 0;
}

int FaultRelay::port() const
{
    return localPort(m_listener);
}

void FaultRelay::start(int serverPort, std::chrono::milliseconds delay)
{
    m_acceptor = std::thread([this, serverPort, delay] { acceptLoop(serverPort, delay); });
}

void FaultRelay::stop()
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(m_stopPipe[1], &byte, 1);
    if (m_acceptor.joinable()) {
        m_acceptor.join();
    }
    closeDescriptor(std::exchange(m_listener, -1));
    const std::lock_guard lock(m_mutex);
    for (const auto &[port, connection] : m_connections) {
        connection->cut(Connection::Ending::close);
    }
}

std::shared_ptr<Connection> FaultRelay::connectionFrom(int privatePort) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_connections.find(privatePort);
    return found == m_connections.end() ? nullptr : found->second;
}

bool FaultRelay::waitReadable(int descriptor, std::chrono::milliseconds timeout) const
{
    std::array<pollfd, 2> watched{pollfd{m_stopPipe[0], POLLIN, 0}, pollfd{descriptor, POLLIN, 0}};
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (true) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        const int wait = timeout.count() < 0 ? -1 : std::max(0, static_cast<int>(left.count()));
        const int ready = ::poll(watched.data(), watched.size(), wait);
        if (ready >= 0 || errno != EINTR) {
            return watched[0].revents == 0;
        }
    }
}

void FaultRelay::acceptLoop(int serverPort, std::chrono::milliseconds delay)
{
    if (!waitReadable(-1, delay)) {
        return;
    }
    while (waitReadable(m_listener, std::chrono::milliseconds(-1))) {
        std::string clientAddress;
        const int client = acceptFrom(m_listener, clientAddress);
        if (client >= 0) {
            relay(client, serverPort, clientAddress);
        } else if (errno == EMFILE || errno == ENFILE) {
            waitReadable(-1, std::chrono::milliseconds(20));
        }
    }
}

void FaultRelay::relay(int client, int serverPort, const std::string &clientAddress)
{
    const int server = connectToLoopback(serverPort);
    if (server < 0) {
        closeDescriptor(client);
        return;
    }
    const int privatePort = localPort(server);
    auto connection = std::make_shared<Connection>(client, server, clientAddress);
    {
        const std::lock_guard lock(m_mutex);
        m_connections[privatePort] = connection;
    }
    std::thread([this, connection, privatePort] {
        connection->run();
        const std::lock_guard lock(m_mutex);
        m_connections.erase(privatePort);
    }).detach();
}

} // namespace demo
