#include "support/OwnSession.h"

#include <QByteArray>
#include <QtGlobal>

#include <cerrno>
#include <cstring>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

const char mark[] = "TARNWICK_TEST_OWN_SESSION";
constexpr int noTools = 127; // as shells say it

} // namespace

bool OwnSession::isEntered()
{
    return qEnvironmentVariableIsSet(mark);
}

std::optional<int> OwnSession::run(int argc, char **argv)
{
    if (isEntered() || access("/usr/bin/xvfb-run", X_OK) != 0)
        return std::nullopt;
    // Without -noreset, the screen starts anew when the last program that used it ends, and a program that
    // comes just then finds none.
    const QByteArray setMark = QByteArray(mark) + "=1";
    std::vector<const char *> command{
        "dbus-run-session", "--", "xvfb-run", "-a", "-s", "-noreset -screen 0 1400x1000x24"};
    command.insert(command.end(), {"env", setMark.constData(), "QT_QPA_PLATFORM=xcb"});
    command.insert(command.end(), argv, argv + argc);
    command.push_back(nullptr);
    const pid_t session = fork();
    if (session == 0) {
        execvp(command.front(), const_cast<char **>(command.data()));
        _exit(noTools);
    }
    int status = 0;
    if (session < 0 || waitpid(session, &status, 0) < 0)
        qFatal("There is no session: %s", std::strerror(errno));
    if (WIFEXITED(status) && WEXITSTATUS(status) == noTools)
        return std::nullopt;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
