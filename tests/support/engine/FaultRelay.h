#pragma once

// The engine's public face: it listens on the engine's port, and relays every connection to the HTTP server
// that hides behind it on a private one. What goes wrong on the wire goes wrong here.

#include "Connection.h"

#include <array>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace demo {

class FaultRelay
{
public:
    FaultRelay();
    ~FaultRelay();
    FaultRelay(const FaultRelay &) = delete;
    FaultRelay &operator=(const FaultRelay &) = delete;

    // 0, or the system's error number.
    int listen(const std::string &host, int port);
    int port() const;

    // Connections wait in the backlog until `delay` has passed.
    void start(int serverPort, std::chrono::milliseconds delay);
    // Closes the port and cuts every connection at once. Does not wait for the handlers behind them.
    void stop();

    // The connection that reaches the HTTP server from this private port; usable from any thread.
    std::shared_ptr<Connection> connectionFrom(int privatePort) const;

private:
    void acceptLoop(int serverPort, std::chrono::milliseconds delay);
    void relay(int client, int serverPort, const std::string &clientAddress);
    bool waitReadable(int descriptor, std::chrono::milliseconds timeout) const;

    int m_listener = -1;
    std::array<int, 2> m_stopPipe;
    std::thread m_acceptor;
    mutable std::mutex m_mutex;
    std::map<int, std::shared_ptr<Connection>> m_connections;
};

} // namespace demo
