#pragma once

// The HTTP server behind the relay: finds the endpoint for each request and lets it answer.

#include "EngineState.h"
#include "Exchange.h"
#include "FaultRelay.h"

#include <memory>
#include <thread>

#include <httplib.h>

namespace demo {

class EngineServer
{
public:
    EngineServer(EngineState &state, FaultRelay &relay);
    ~EngineServer();
    EngineServer(const EngineServer &) = delete;
    EngineServer &operator=(const EngineServer &) = delete;

    // Serves on a private port, which it returns; -1 when there is none.
    int start();

private:
    void handle(const httplib::Request &request, httplib::Response &response);
    void answer(const httplib::Request &request, const std::shared_ptr<Exchange> &exchange);

    EngineState &m_state;
    FaultRelay &m_relay;
    httplib::Server m_server;
    socket_t m_listener = INVALID_SOCKET;
    std::thread m_thread;
};

} // namespace demo
