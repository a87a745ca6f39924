#include "EngineServer.h"

#include "ChatJob.h"
#include "ControlApi.h"
#include "EngineLog.h"
#include "Json.h"
#include "ModelAnswers.h"
#include "ModelRequest.h"
#include "PullJob.h"
#include "ThreadPerConnection.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <string_view>

#include <sys/socket.h>

namespace demo {

using namespace Qt::StringLiterals;

namespace {

constexpr std::time_t hour = 60 * 60;
constexpr auto plainText = "text/plain; charset=utf-8";

using Endpoint = void (*)(EngineState &, const std::shared_ptr<Exchange> &, const QJsonObject &);

struct Route
{
    std::string_view method;
    std::string_view path;
    // What faults are scoped by.
    std::string_view name;
    Endpoint endpoint;
};

void greet(EngineState &, const std::shared_ptr<Exchange> &exchange, const QJsonObject &)
{
    exchange->replyBytes(200, "Ollama is running", plainText);
}

void tellVersion(EngineState &state, const std::shared_ptr<Exchange> &exchange, const QJsonObject &)
{
    exchange->reply({{"version"_L1, toQt(state.settings.version)}});
}

// Adapts the endpoints that answer at once.
template <auto endpoint>
void atOnce(EngineState &state, const std::shared_ptr<Exchange> &exchange, const QJsonObject &body)
{
    if constexpr (std::is_invocable_v<decltype(endpoint), EngineState &, Exchange &>) {
        endpoint(state, *exchange);
    } else {
        endpoint(state, *exchange, body);
    }
}

constexpr auto routes = std::to_array<Route>({
    {"GET", "/", "version", greet},
    {"GET", "/api/version", "version", tellVersion},
    {"GET", "/api/tags", "tags", atOnce<listInstalled>},
    {"GET", "/api/ps", "ps", atOnce<listRunning>},
    {"POST", "/api/show", "show", atOnce<showModel>},
    {"POST", "/api/generate", "generate", atOnce<unloadModel>},
    {"DELETE", "/api/delete", "delete", atOnce<deleteModel>},
    {"POST", "/api/pull", "pull", pull},
    {"POST", "/api/chat", "chat", chat},
});

// A page in a browser may only talk to the engine when it comes from this machine.
bool isForeignOrigin(const std::string &origin)
{
    constexpr auto allowed =
        std::to_array<std::string_view>({"http://localhost", "https://localhost", "http://127.0.0.1",
                                         "https://127.0.0.1", "http://0.0.0.0", "https://0.0.0.0"});
    constexpr auto schemes = std::to_array<std::string_view>({"app://", "file://", "tauri://"});
    const auto isHost = [&origin](std::string_view host) {
        return origin == host || origin.starts_with(std::string(host) + ":");
    };
    const auto hasScheme = [&origin](std::string_view scheme) { return origin.starts_with(scheme); };
    return !origin.empty() && std::none_of(allowed.begin(), allowed.end(), isHost) &&
           std::none_of(schemes.begin(), schemes.end(), hasScheme);
}

} // namespace

EngineServer::EngineServer(EngineState &state, FaultRelay &relay) : m_state(state), m_relay(relay)
{
    m_server.new_task_queue = [] { return new ThreadPerConnection; };
    m_server.set_socket_options([this](socket_t socket) { m_listener = socket; });
    m_server.set_tcp_nodelay(true);
    m_server.set_keep_alive_max_count(1'000'000'000);
    m_server.set_keep_alive_timeout(hour);
    m_server.set_read_timeout(hour);
    m_server.set_write_timeout(hour);
    const auto handler = [this](const httplib::Request &request, httplib::Response &response) {
        handle(request, response);
    };
    m_server.Get(".*", handler);
    m_server.Post(".*", handler);
    m_server.Put(".*", handler);
    m_server.Patch(".*", handler);
    m_server.Delete(".*", handler);
    m_server.Options(".*", handler);
    m_server.set_exception_handler(
        [](const httplib::Request &, httplib::Response &response, std::exception_ptr) {
            response.status = 500;
            response.set_content(R"({"error":"internal error"})", "application/json; charset=utf-8");
        });
}

EngineServer::~EngineServer()
{
    m_server.stop();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

int EngineServer::start()
{
    const int port = m_server.bind_to_any_port("127.0.0.1");
    if (port > 0) {
        // The library's own backlog is so short that a burst of connections would wait for a second.
        ::listen(m_listener, 512);
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
    }
    return port;
}

void EngineServer::handle(const httplib::Request &request, httplib::Response &response)
{
    const std::shared_ptr<Connection> connection = m_relay.connectionFrom(request.remote_port);
    if (connection == nullptr) {
        response.status = 500;
        return;
    }
    connection->beginRequest();
    if (request.path.starts_with("/demo/")) {
        answerControl(m_state, request, response);
        return;
    }
    answer(request, std::make_shared<Exchange>(request, response, connection, m_state.requests));
}

void EngineServer::answer(const httplib::Request &request, const std::shared_ptr<Exchange> &exchange)
{
    if (isForeignOrigin(request.get_header_value("Origin"))) {
        exchange->replyBytes(403, {}, plainText);
        return;
    }
    const auto samePath = [&request](const Route &route) { return route.path == request.path; };
    const auto route = std::find_if(routes.begin(), routes.end(), samePath);
    if (route == routes.end()) {
        exchange->replyBytes(404, "404 page not found", plainText);
        return;
    }
    const bool headOfGet = request.method == "HEAD" && route->method == "GET";
    if (request.method != route->method && !headOfGet) {
        exchange->replyBytes(405, "405 method not allowed", plainText);
        return;
    }
    const auto body = parseObject(request.body);
    exchange->setFaults(m_state.faults.forRequest(route->name, body ? modelTextOf(*body) : std::string()));
    if (exchange->strikeEarly()) {
        return;
    }
    if (!body && route->method != "GET") {
        exchange->replyError(400, request.body.empty() ? "missing request body"
                                                       : "invalid character in request body");
        return;
    }
    route->endpoint(m_state, exchange, body.value_or(QJsonObject()));
}

} // namespace demo
