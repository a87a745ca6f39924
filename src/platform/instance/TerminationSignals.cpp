#include "platform/instance/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

// A signal handler may do next to nothing but write to a pipe, which the event loop watches.
std::array<int, 2> signalPipe = {-1, -1};

void handleSignal(int)
{
    const int error = errno;
    const char byte = 1;
    [[maybe_unused]] const auto written = write(signalPipe[1], &byte, 1);
    errno = error;
}

int openPipe()
{
    if (pipe(signalPipe.data()) == 0) {
        for (const int end : signalPipe) {
            fcntl(end, F_SETFD, FD_CLOEXEC);
            fcntl(end, F_SETFL, O_NONBLOCK);
        }
    }
    return signalPipe[0];
}

} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent), m_notifier(openPipe(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> bytes{};
        for (auto count = read(signalPipe[0], bytes.data(), bytes.size()); count > 0; --count)
            Q_EMIT terminationRequested();
    });
    struct sigaction action = {};
    action.sa_handler = handleSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        // Whoever started this may want it to outlive its terminal.
        struct sigaction before = {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            sigaction(number, &action, nullptr);
    }
}
