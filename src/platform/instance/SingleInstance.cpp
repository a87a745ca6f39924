#include "platform/instance/SingleInstance.h"

#include "platform/files/PrivateFolder.h"
#include "platform/instance/UserSocket.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QLoggingCategory>
#include <QSocketNotifier>
#include <QThread>

#include <cerrno>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(instanceLog, "tarnwick.instance")

constexpr int pauseMilliseconds = 50;

const QByteArray confirmation = "done\n";

// Socket paths are short everywhere, so the folder goes in as a digest.
QString socketNameFor(const QString &folder)
{
    const QByteArray digest = QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha256).toHex();
    return u"tarnwick-%1.socket"_s.arg(QLatin1StringView(digest.first(16)));
}

// `path`, a part of which may not be there yet, without links: two spellings of one folder are one profile.
QString canonicalPath(const QString &path)
{
    const QString known = QFileInfo(path).canonicalFilePath();
    if (!known.isEmpty() || QFileInfo(path).isRoot())
        return known;
    return QDir(canonicalPath(QFileInfo(path).path())).filePath(QFileInfo(path).fileName());
}

// In the folder that the system keeps for such things, else in the profile's own.
QString socketPathFor(const QString &folder, const QString &name)
{
    const QString runtimeFolder = UserSocket::runtimeFolder();
    return (runtimeFolder.isEmpty() ? folder : runtimeFolder) + u'/' + name;
}

} // namespace

SingleInstance::SingleInstance(const QString &folder, std::chrono::milliseconds patience)
    : m_patience(patience),
      m_folder(canonicalPath(QDir::cleanPath(QFileInfo(folder).absoluteFilePath()))),
      m_socketName(socketNameFor(m_folder)),
      m_lock(m_folder),
      m_socketPath(socketPathFor(m_folder, m_socketName))
{
}

SingleInstance::~SingleInstance()
{
    stopAnswering();
}

SingleInstance::Claim SingleInstance::claim(const LaunchRequest &request)
{
    if (const int error = makePrivateFolder(m_folder))
        return {Claim::Outcome::noFolder, m_folder, error, 0};
    for (const QDeadlineTimer deadline(m_patience);;) {
        // Also where the lock could be had: somebody may have removed its file from under the program that
        // holds it.
        const Answer answer = ask(request, deadline);
        if (answer == Answer::given)
            return {Claim::Outcome::handedOver, {}, 0, 0};
        const ProfileLock::State lock = m_lock.take();
        if (lock == ProfileLock::State::blocked)
            return {Claim::Outcome::blocked, m_lock.path(), 0, 0};
        if (lock == ProfileLock::State::failed)
            return {Claim::Outcome::noFolder, m_folder, m_lock.error(), 0};
        if (answer == Answer::refused && lock != ProfileLock::State::held) {
            listen();
            return {};
        }
        if (answer == Answer::missing || deadline.hasExpired())
            return {Claim::Outcome::unanswered, {}, 0, m_lock.told().process};
        QThread::msleep(pauseMilliseconds);
    }
}

void SingleInstance::stopAnswering()
{
    if (m_callers)
        QFile::remove(m_socketPath);
    m_callers.reset();
    m_socket = Descriptor();
}

// The running program may have been started where another folder counted as the system's: then only its lock
// says where it answers. What is left there of a profile that this one is a copy of goes by another name.
SingleInstance::Answer SingleInstance::ask(const LaunchRequest &request, const QDeadlineTimer &deadline) const
{
    const QString told = m_lock.told().socket;
    const Answer answer = askAt(m_socketPath, request, deadline);
    if (answer != Answer::refused || told == m_socketPath || QFileInfo(told).fileName() != m_socketName)
        return answer;
    return askAt(told, request, deadline);
}

SingleInstance::Answer SingleInstance::askAt(const QString &path, const LaunchRequest &request,
                                             const QDeadlineTimer &deadline) const
{
    Descriptor connection = UserSocket::connectTo(path);
    if (!connection.isOpen())
        return Answer::refused;
    QLocalSocket socket;
    socket.setSocketDescriptor(connection.release());
    socket.write(request.encode());
    while (!socket.canReadLine()) {
        if (!socket.waitForReadyRead(int(deadline.remainingTime())))
            return socket.state() == QLocalSocket::ConnectedState ? Answer::missing : Answer::refused;
    }
    return socket.readLine() == confirmation ? Answer::given : Answer::refused;
}

void SingleInstance::listen()
{
    m_socket = UserSocket::listenAt(m_socketPath);
    if (m_socket.isOpen()) {
        m_callers = std::make_unique<QSocketNotifier>(m_socket.number(), QSocketNotifier::Read);
        connect(m_callers.get(), &QSocketNotifier::activated, this, &SingleInstance::greet);
    } else {
        qCWarning(instanceLog) << "Other launches cannot reach this one:" << qt_error_string(errno);
    }
    m_lock.tell({QCoreApplication::applicationPid(), m_socket.isOpen() ? m_socketPath : QString()});
}

void SingleInstance::greet()
{
    for (;;) {
        Descriptor caller = UserSocket::accept(m_socket.number());
        if (!caller.isOpen())
            return;
        hear(std::move(caller));
    }
}

void SingleInstance::hear(Descriptor connection)
{
    auto *const caller = new QLocalSocket(this);
    caller->setReadBufferSize(LaunchRequest::longestLine);
    connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
    const auto listenTo = [this, caller] {
        if (!caller->canReadLine() && caller->bytesAvailable() < LaunchRequest::longestLine)
            return;
        const auto request = LaunchRequest::decode(caller->readLine());
        // Who has given up waiting meanwhile has told the user so.
        const bool isHeard = request && caller->write(confirmation) > 0 && caller->flush();
        caller->disconnectFromServer();
        if (isHeard)
            Q_EMIT requested(*request);
    };
    connect(caller, &QLocalSocket::readyRead, this, listenTo);
    caller->setSocketDescriptor(connection.release());
    listenTo();
}
