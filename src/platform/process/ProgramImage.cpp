#include "platform/process/ProgramImage.h"

#include <QFile>

#include <csignal>

#include <unistd.h>

#ifdef Q_OS_LINUX
#include <linux/close_range.h>
#include <sys/syscall.h>
#endif

extern char **environ; // macOS declares it nowhere

namespace {

std::vector<char *> pointersTo(std::vector<QByteArray> &texts)
{
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

void resetSignals()
{
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

} // namespace

ProgramImage::ProgramImage(const QString &program, const QStringList &arguments,
                           const std::optional<QMap<QByteArray, QByteArray>> &environment)
{
    m_arguments.push_back(QFile::encodeName(program));
    for (const QString &argument : arguments)
        m_arguments.push_back(QFile::encodeName(argument));
    m_argumentPointers = pointersTo(m_arguments);
    if (!environment)
        return;
    for (auto entry = environment->begin(); entry != environment->end(); ++entry)
        m_environment.push_back(entry.key() + '=' + entry.value());
    m_environmentPointers = pointersTo(m_environment);
}

void ProgramImage::execute(int output) const
{
    if (::setpgid(0, 0) != 0)
        return;
    resetSignals();
    if (::dup2(output, STDOUT_FILENO) < 0 || ::dup2(output, STDERR_FILENO) < 0)
        return;
#ifdef Q_OS_LINUX
    // Ours are closed by exec anyway; these are what libraries and whoever started us left open.
    ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
#endif
    char *const *const environment = m_environmentPointers.empty() ? environ : m_environmentPointers.data();
    ::execve(m_argumentPointers.front(), m_argumentPointers.data(), environment);
}
