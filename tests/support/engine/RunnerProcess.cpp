#include "RunnerProcess.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

extern "C" char **environ;

namespace demo {

namespace {

std::string ownProgram()
{
#ifdef __APPLE__
    std::array<char, 4096> path{};
    auto size = static_cast<uint32_t>(path.size());
    return _NSGetExecutablePath(path.data(), &size) == 0 ? std::string(path.data()) : std::string();
#else
    std::error_code problem;
    return std::filesystem::read_symlink("/proc/self/exe", problem).string();
#endif
}

} // namespace

RunnerProcess::RunnerProcess()
{
    std::string program = ownProgram();
    std::string word = "runner";
    const std::array<char *, 3> arguments{program.data(), word.data(), nullptr};
    pid_t id = -1;
    if (::posix_spawn(&id, program.c_str(), nullptr, nullptr, arguments.data(), environ) == 0) {
        m_id = id;
    }
}

RunnerProcess::~RunnerProcess()
{
    if (m_id > 0) {
        ::kill(m_id, SIGKILL);
        ::waitpid(m_id, nullptr, 0);
    }
}

int runnerMain()
{
    // Sockets that slipped through would keep the engine's connections alive after its end.
    for (int descriptor = STDERR_FILENO + 1; descriptor < 1024; ++descriptor) {
        ::close(descriptor);
    }
    const char *const runners = std::getenv("DEMO_ENGINE_RUNNER");
    if (runners != nullptr && std::string_view(runners) == "2" && ::fork() == 0) {
        ::setsid();
        std::signal(SIGTERM, SIG_IGN);
    }
    ::sleep(600);
    return 0;
}

} // namespace demo
