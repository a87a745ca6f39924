#include "EngineProcess.h"

#include "EngineLog.h"
#include "EngineServer.h"
#include "EngineSettings.h"
#include "EngineState.h"
#include "FaultRelay.h"
#include "Json.h"
#include "ProcessFaults.h"
#include "Sockets.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>
#include <thread>

#include <poll.h>
#include <unistd.h>

namespace demo {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

int signalPipe = -1;

void noteSignal(int)
{
    const int problem = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe, &byte, 1);
    errno = problem;
}

// Becomes readable with every SIGTERM and SIGINT.
int installSignalHandler()
{
    const std::array<int, 2> ends = makePipe();
    signalPipe = ends[1];
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    return ends[0];
}

void waitForSignal(int descriptor)
{
    pollfd watched{descriptor, POLLIN, 0};
    while (::poll(&watched, 1, -1) < 0 && errno == EINTR) {
    }
    char byte = 0;
    [[maybe_unused]] const ssize_t count = ::read(descriptor, &byte, 1);
}

int fail(const std::string &text)
{
    rawError("Error: " + text + "\n");
    return 1;
}

std::string lowerSystemText(int problem)
{
    std::string text = std::generic_category().message(problem);
    if (!text.empty() && text.front() >= 'A' && text.front() <= 'Z') {
        text.front() = static_cast<char>(text.front() - 'A' + 'a');
    }
    return text;
}

// 0, or the exit status of an engine that finds no home to live in.
int checkHome()
{
    const char *home = std::getenv("HOME");
    if (home == nullptr || *home == '\0') {
        rawError("panic: $HOME is not defined\n");
        return 2;
    }
    if (::access(home, W_OK) != 0) {
        return fail("could not create directory mkdir " + std::string(home) +
                    "/.ollama: " + lowerSystemText(errno));
    }
    return 0;
}

std::string addressText(const EngineAddress &address)
{
    return address.host + ":" + std::to_string(address.port);
}

void installModels(EngineState &state)
{
    for (const std::string &text : state.settings.installed) {
        const auto name = ModelName::parse(text);
        if (name && !state.store.find(*name)) {
            state.store.install(*name);
        }
    }
}

// Streams end here without a last line; what remains of their handlers gets a moment to tidy up.
[[noreturn]] void leave(EngineState &state, FaultRelay &relay)
{
    relay.stop();
    state.running.endRunners();
    const auto deadline = std::chrono::steady_clock::now() + 500ms;
    while (state.requests.runningCount() > 0 && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(2ms);
    }
    std::_Exit(0);
}

int serveWith(EngineState &state)
{
    FaultRelay relay;
    const EngineAddress &address = state.settings.address;
    const FaultSet faults(state.faults.all());
    int problem = faults.has("port-in-use") ? EADDRINUSE : 0;
    if (problem == 0) {
        problem = relay.listen(address.host, address.port);
    }
    if (problem != 0) {
        return fail("listen tcp " + addressText(address) + ": bind: " + lowerSystemText(problem));
    }
    logLine("INFO", "routes.go:1920",
            "Listening on " + addressText({address.host, relay.port()}) + " (version " +
                state.settings.version + ")");
    const int signals = installSignalHandler();
    EngineServer server(state, relay);
    const int privatePort = server.start();
    if (privatePort <= 0) {
        return fail("no private port");
    }
    startProcessFaults(state.faults.all());
    const std::chrono::milliseconds slowStart(
        faults.number("slow-start", faults.has("slow-start") ? 5000 : 0));
    relay.start(privatePort, state.settings.discoveryDelay + slowStart);
    while (true) {
        waitForSignal(signals);
        const FaultSet now(state.faults.all());
        if (!now.has("ignore-term")) {
            state.store.loseUnwritten();
            std::this_thread::sleep_for(
                std::chrono::milliseconds(now.number("stop-delay", now.has("stop-delay") ? 3000 : 0)));
            leave(state, relay);
        }
    }
}

} // namespace

int serve()
{
    std::signal(SIGPIPE, SIG_IGN);
    if (const int status = checkHome(); status != 0) {
        return status;
    }
    const EngineSettings settings = settingsFromEnvironment();
    const ParsedFaults faults = parseFaults(settings.faults);
    if (!faults.unknown.empty()) {
        return fail("no such fault: " + faults.unknown.front());
    }
    try {
        EngineState state(settings);
        state.faults.set(faults.faults);
        state.store.removeOldPartials();
        installModels(state);
        return serveWith(state);
    } catch (const std::filesystem::filesystem_error &error) {
        return fail("mkdir " + error.path1().string() + ": " + lowerSystemText(error.code().value()));
    }
}

int printVersion()
{
    const EngineSettings settings = settingsFromEnvironment();
    const std::string host = settings.address.host == "0.0.0.0" ? "127.0.0.1" : settings.address.host;
    httplib::Client client(host, settings.address.port);
    client.set_connection_timeout(2);
    client.set_read_timeout(5);
    std::string served;
    if (const auto answer = client.Get("/api/version"); answer && answer->status == 200) {
        const QJsonObject object = parseObject(answer->body).value_or(QJsonObject());
        served = toStd(object.value("version"_L1).toString());
    }
    if (served.empty()) {
        std::cout << "Warning: could not connect to a running Ollama instance\n";
    } else {
        std::cout << "ollama version is " << served << '\n';
    }
    if (served != settings.version) {
        std::cout << "Warning: client version is " << settings.version << '\n';
    }
    return 0;
}

} // namespace demo
