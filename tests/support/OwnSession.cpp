#include "support/OwnSession.h"

#include <QByteArray>
#include <QtGlobal>

#include <vector>

#include <unistd.h>

namespace {

const char mark[] = "TARNWICK_TEST_OWN_SESSION";

} // namespace

bool OwnSession::isEntered()
{
    return qEnvironmentVariableIsSet(mark);
}

void OwnSession::enter(int argc, char **argv)
{
    if (isEntered() || access("/usr/bin/xvfb-run", X_OK) != 0)
        return;
    // Without -noreset, the screen starts anew when the last program that used it ends, and a program that
    // comes just then finds none.
    const QByteArray setMark = QByteArray(mark) + "=1";
    std::vector<const char *> command{
        "dbus-run-session", "--", "xvfb-run", "-a", "-s", "-noreset -screen 0 1400x1000x24"};
    command.insert(command.end(), {"env", setMark.constData(), "QT_QPA_PLATFORM=xcb"});
    command.insert(command.end(), argv, argv + argc);
    command.push_back(nullptr);
    execvp(command.front(), const_cast<char **>(command.data()));
}
