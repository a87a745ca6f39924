#include "core/engine/EngineManager.h"

#include "core/api/OllamaClient.h"
#include "core/engine/AppPaths.h"
#include "core/engine/EngineRules.h"
#include "platform/async/Completion.h"
#include "platform/async/Launch.h"
#include "platform/async/Sleep.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/error/Error.h"
#include "platform/text/OutsideText.h"

#include <QFileInfo>
#include <QPointer>

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
      m_shareOnNetwork(defaults.boolean(shareKey)),
      m_launched(*m_options.holder)
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
    connect(&m_launched, &LaunchedEngines::endedByItself, this, &EngineManager::takeCrash);
    connect(&m_launched, &LaunchedEngines::wrote, this,
            [this](const QByteArray &output) { appendLog(QString::fromUtf8(output)); });
}

EngineManager::~EngineManager()
{
    m_starting.requestStop();
    m_settled.requestStop();
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
    if (m_state.kind == State::starting)
        co_await startSettled();
    else if (m_state.kind != State::running && !quitToken().stopRequested())
        co_await startAnew();
}

Task<> EngineManager::startSettled()
{
    const Completion<> settled;
    const StopCallback told(m_settled.token(), [settled] { settled.complete(); });
    co_await settled.wait();
}

Task<> EngineManager::startAnew()
{
    const QString program = m_enginePath.isEmpty() ? locate() : m_enginePath;
    if (program.isEmpty()) {
        setState({State::notInstalled, {}});
        co_return;
    }
    const StopToken token = beginStart(program);

    co_await endOldEngines(token);
    if (token.stopRequested())
        co_return;
    AppPaths::ensure(AppPaths::modelsDir());
    const bool adopted = co_await adopt(token);
    if (adopted || token.stopRequested())
        co_return;
    if (!AppPaths::portIsFree(m_port)) {
        failForTakenPort();
        co_return;
    }
    if (launchEngine(program))
        co_await waitForAnswer(token);
}

// None of ours is ever adopted: its program may be gone, and what it was told out of date.
Task<> EngineManager::endOldEngines(StopToken token)
{
    retireEngine();
    setPreviousIsEnding(m_launched.areOldOnesLeft());
    co_await m_launched.oldOnesEnded(m_options.endLimit, token);
    if (!token.stopRequested())
        setPreviousIsEnding(false);
}

// Whether somebody else's server answers, which is then the one in use.
Task<bool> EngineManager::adopt(StopToken token)
{
    if (m_launched.oldOnesHold(m_port))
        co_return false;
    const std::optional<QString> version = co_await answerOn(m_port, token);
    if (!version || token.stopRequested())
        co_return false;
    m_adopted.emplace(m_port);
    setRunning(*version);
    appendLog(tr("An Ollama server is already answering on port %1; using it.").arg(m_port) + u'\n');
    co_return true;
}

Task<> EngineManager::waitForAnswer(StopToken token)
{
    for (int attempt = 0; attempt < m_options.attempts; ++attempt) {
        const std::optional<QString> version = co_await answerOn(m_port, token);
        if (token.stopRequested())
            co_return;
        if (version) {
            m_launched.noteCurrent();
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
    m_settled = StopSource(quitToken());
    const StopToken token = m_starting.token();
    m_launched.mute();
    if (!m_logLines.isEmpty()) {
        m_logLines.clear();
        Q_EMIT logLinesChanged();
    }
    setPortConflict(false);
    setEnginePath(program);
    setState({State::starting, {}});
    return token;
}

bool EngineManager::launchEngine(const QString &program)
{
    const Environment environment =
        engineEnvironment(systemEnvironment(), m_port, m_shareOnNetwork, AppPaths::modelsDir());
    try {
        m_launched.launch({program, {u"serve"_s}, environment}, m_port);
        return true;
    } catch (const Error &error) {
        fail(tr("The engine could not be started: %1").arg(isolated(error.description())));
        return false;
    }
}

void EngineManager::takeCrash()
{
    m_starting.requestStop();
    if (mentionsTakenPort(m_logLines))
        failForTakenPort();
    else
        failForLostEngine();
}

void EngineManager::retireEngine()
{
    if (m_launched.isOneInUse())
        m_launched.retire(endPull && endPull());
}

void EngineManager::stop()
{
    m_starting.requestStop();
    retireEngine();
    if (!m_enginePath.isEmpty())
        setState({State::stopped, {}});
}

Task<> EngineManager::watchAdopted()
{
    const StopToken token = m_starting.token();
    if (!m_adopted || token.stopRequested())
        co_return;
    const std::optional<QString> version = co_await answerOn(m_adopted->port(), token);
    if (token.stopRequested() || !m_adopted)
        co_return;
    if (m_adopted->isGoneAfter(version.has_value()))
        failForLostEngine();
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

// The engine that runs is not ended before the next start.
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

void EngineManager::failForLostEngine()
{
    fail(tr("The engine stopped unexpectedly. See the details below."));
}

void EngineManager::setState(const State &state)
{
    if (state.kind != State::running)
        m_adopted.reset();
    if (state.kind != State::starting)
        setPreviousIsEnding(false);
    if (m_state == state)
        return;
    m_state = state;
    if (state.kind != State::starting)
        m_settled.requestStop();
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

void EngineManager::setPreviousIsEnding(bool ending)
{
    if (std::exchange(m_previousIsEnding, ending) != ending)
        Q_EMIT previousIsEndingChanged();
}

void EngineManager::setPortConflict(bool conflict)
{
    if (m_portConflict == conflict)
        return;
    m_portConflict = conflict;
    Q_EMIT portConflictChanged();
}
