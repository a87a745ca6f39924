#include "core/engine/EngineManager.h"

#include "core/api/OllamaClient.h"
#include "core/engine/AppPaths.h"
#include "core/engine/EngineRules.h"
#include "platform/async/Launch.h"
#include "platform/async/Sleep.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/error/Error.h"
#include "platform/text/OutsideText.h"

#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int defaultPort = 11435;

const QString portKey = u"port"_s;
const QString shareKey = u"shareOnNetwork"_s;
const QString chosenByHandKey = u"manualEnginePath"_s;
const QString installedByUsKey = u"ownEnginePath"_s;

// The version of the engine that answers on `port`, or nothing when none does.
Task<std::optional<QString>> answerOn(int port, StopToken stop)
{
    try {
        const OllamaClient client(port);
        co_return co_await client.version(stop);
    } catch (...) {
        co_return std::nullopt;
    }
}

} // namespace

QStringList EngineOptions::standardInstallPlaces()
{
#ifdef Q_OS_MACOS
    return {u"/Applications/Ollama.app/Contents/Resources/ollama"_s, u"/opt/homebrew/bin/ollama"_s,
            u"/usr/local/bin/ollama"_s};
#else
    return {u"/usr/local/bin/ollama"_s, u"/usr/bin/ollama"_s, u"/home/linuxbrew/.linuxbrew/bin/ollama"_s};
#endif
}

EngineManager::EngineManager(UserDefaults &defaults, EngineOptions options, QObject *parent)
    : QObject(parent),
      m_defaults(defaults),
      m_options(std::move(options)),
      m_installer(m_options.installer, m_options.desktop),
      m_port(defaults.integer(portKey)),
      m_shareOnNetwork(defaults.boolean(shareKey))
{
    if (m_port == 0)
        m_port = defaultPort;
    m_enginePath = locate();
    m_state.kind = m_enginePath.isEmpty() ? State::notInstalled : State::stopped;
    connect(&m_installer, &EngineInstaller::installChanged, this, &EngineManager::installChanged);
    connect(&m_installer, &EngineInstaller::installErrorChanged, this, &EngineManager::installErrorChanged);
    connect(&m_installer, &EngineInstaller::choiceCheckChanged, this, &EngineManager::choiceCheckChanged);
    connect(&m_installer, &EngineInstaller::installed, this, &EngineManager::takeInstalled);
    connect(&m_installer, &EngineInstaller::chosen, this, &EngineManager::takeChosen);
}

EngineManager::~EngineManager()
{
    m_starting.requestStop();
}

QString EngineManager::address() const
{
    return u"http://127.0.0.1:%1"_s.arg(m_port);
}

void EngineManager::setPort(int port)
{
    if (m_port == port)
        return;
    m_port = port;
    m_defaults.set(portKey, port);
    Q_EMIT portChanged();
}

void EngineManager::setShareOnNetwork(bool share)
{
    if (m_shareOnNetwork == share)
        return;
    m_shareOnNetwork = share;
    m_defaults.set(shareKey, share);
    Q_EMIT shareOnNetworkChanged();
}

QString EngineManager::locate() const
{
    const QStringList candidates =
        engineCandidates(m_defaults.string(chosenByHandKey), m_options.installPlaces,
                         m_defaults.string(installedByUsKey), AppPaths::findBinary(AppPaths::engineDir()));
    for (const QString &candidate : candidates) {
        const QFileInfo file(candidate);
        if (file.isFile() && file.isExecutable())
            return candidate;
    }
    return {};
}

Task<> EngineManager::start()
{
    if (isOn() || quitToken().stopRequested())
        co_return;
    const QString program = m_enginePath.isEmpty() ? locate() : m_enginePath;
    if (program.isEmpty()) {
        setState({State::notInstalled, {}});
        co_return;
    }
    const StopToken token = beginStart(program);

    if (!m_ending.isEmpty() && !token.stopRequested()) {
        m_oldEnginesEnded = StopSource(token);
        const StopToken oldEnginesEnded = m_oldEnginesEnded.token();
        co_await sleepFor(m_options.endLimit, oldEnginesEnded);
    }
    if (token.stopRequested())
        co_return;

    AppPaths::ensure(AppPaths::modelsDir());
    if (!portHeldByOldEngine()) {
        const std::optional<QString> version = co_await answerOn(m_port, token);
        if (token.stopRequested())
            co_return;
        if (version) {
            setRunning(*version);
            appendLog(tr("An Ollama server is already answering on port %1; using it.").arg(m_port) + u'\n');
            co_return;
        }
    }
    if (!AppPaths::portIsFree(m_port)) {
        failForTakenPort();
        co_return;
    }
    if (!launchEngine(program))
        co_return;

    for (int attempt = 0; attempt < m_options.attempts; ++attempt) {
        const std::optional<QString> version = co_await answerOn(m_port, token);
        if (token.stopRequested())
            co_return;
        if (version) {
            setRunning(*version);
            co_return;
        }
        co_await sleepFor(m_options.pause, token);
        if (token.stopRequested())
            co_return;
    }
    stop();
    fail(tr("The engine did not answer in time. See the details below."));
}

StopToken EngineManager::beginStart(const QString &program)
{
    m_starting = StopSource(quitToken());
    const StopToken token = m_starting.token();
    ++m_starts;
    if (!m_logLines.isEmpty()) {
        m_logLines.clear();
        Q_EMIT logLinesChanged();
    }
    setPortConflict(false);
    setEnginePath(program);
    setState({State::starting, {}});
    return token;
}

// While one does, whoever answers there is about to be gone.
bool EngineManager::portHeldByOldEngine() const
{
    const auto usesOurPort = [this](const Engine &engine) { return engine.port == m_port; };
    return std::any_of(m_ending.begin(), m_ending.end(), usesOurPort);
}

bool EngineManager::launchEngine(const QString &program)
{
    const QPointer<EngineManager> self(this);
    const auto onOutput = [self, start = m_starts](const QByteArray &chunk) {
        if (self)
            self->engineWrote(start, chunk);
    };
    const auto onEnd = [self, start = m_starts](int) {
        if (self)
            self->engineEnded(start);
    };
    const Environment environment =
        engineEnvironment(systemEnvironment(), m_port, m_shareOnNetwork, AppPaths::modelsDir());
    try {
        const auto process = ChildProcess::start({program, {u"serve"_s}, environment}, onOutput, onEnd);
        // One that an installation has left running, and that does not serve here.
        if (const auto engine = std::exchange(m_current, std::nullopt)) {
            engine->process->terminate();
            m_ending.append(*engine);
        }
        m_current = Engine{process, m_port, m_starts};
        m_options.holder->set(process);
        return true;
    } catch (const Error &error) {
        fail(tr("The engine could not be started: %1").arg(isolated(error.description())));
        return false;
    }
}

// The log belongs to the last start: an engine that was told to stop before it may still have something to
// say.
void EngineManager::engineWrote(int start, const QByteArray &chunk)
{
    const bool isCurrent = m_current && m_current->start == start;
    if (isCurrent || m_starts == start)
        appendLog(QString::fromUtf8(chunk));
}

void EngineManager::engineEnded(int start)
{
    m_ending.removeIf([start](const Engine &engine) { return engine.start == start; });
    if (m_ending.isEmpty())
        m_oldEnginesEnded.requestStop();
    if (!m_current || m_current->start != start)
        return;
    m_current.reset();
    m_options.holder->clear();
    m_starting.requestStop();
    if (mentionsTakenPort(m_logLines))
        failForTakenPort();
    else
        fail(tr("The engine stopped unexpectedly. See the details below."));
}

void EngineManager::stop()
{
    m_starting.requestStop();
    // First, so that the coming end is not taken for a crash.
    if (const auto engine = std::exchange(m_current, std::nullopt))
        m_ending.append(*engine);
    m_options.holder->terminate();
    if (!m_enginePath.isEmpty())
        setState({State::stopped, {}});
}

Task<> EngineManager::useAnotherPort()
{
    const std::optional<int> free = AppPaths::findFreePort(m_port);
    if (!free) {
        fail(tr("I could not find a free port. Close some programs and try again."));
        co_return;
    }
    setPort(*free);
    co_await start();
}

// The engine that runs is not ended, and the next start finds it answering.
void EngineManager::takeInstalled(const QString &program, const QString &version)
{
    m_defaults.set(installedByUsKey, program);
    m_defaults.remove(chosenByHandKey);
    m_starting.requestStop();
    setEnginePath(program);
    setEngineVersion(version);
    setState({State::stopped, {}});
}

void EngineManager::takeChosen(const QString &program, const QString &version)
{
    m_defaults.set(chosenByHandKey, program);
    setEnginePath(program);
    setEngineVersion(version);
    if (m_state.kind == State::notInstalled)
        setState({State::stopped, {}});
}

void EngineManager::appendLog(const QString &text)
{
    const QStringList lines = logWith(m_logLines, text);
    if (lines == m_logLines)
        return;
    m_logLines = lines;
    Q_EMIT logLinesChanged();
}

void EngineManager::setRunning(const QString &version)
{
    setEngineVersion(version);
    setState({State::running, {}});
}

void EngineManager::fail(const QString &message)
{
    setState({State::failed, message});
}

void EngineManager::failForTakenPort()
{
    setPortConflict(true);
    fail(tr("Port %1 is already used by another program.").arg(m_port));
}

void EngineManager::setState(const State &state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT stateChanged();
}

void EngineManager::setEnginePath(const QString &path)
{
    if (m_enginePath == path)
        return;
    m_enginePath = path;
    Q_EMIT enginePathChanged();
}

void EngineManager::setEngineVersion(const QString &version)
{
    if (m_engineVersion == version)
        return;
    m_engineVersion = version;
    Q_EMIT engineVersionChanged();
}

void EngineManager::setPortConflict(bool conflict)
{
    if (m_portConflict == conflict)
        return;
    m_portConflict = conflict;
    Q_EMIT portConflictChanged();
}
