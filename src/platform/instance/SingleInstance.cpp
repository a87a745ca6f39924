#include "platform/instance/SingleInstance.h"

#include "platform/files/PrivateFolder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLoggingCategory>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(instanceLog, "tarnwick.instance")

constexpr int handOverMilliseconds = 1000;
// Longer than quitting takes, unless the disk holds it up.
constexpr int lockMilliseconds = 3000;

const QByteArray newChatLine = "new-chat\n";
const QByteArray showLine = "show\n";
constexpr qint64 longestLine = 64; // bytes; what is longer is no wish of ours

// Socket paths are short everywhere, so the folder goes in as a digest; the user id keeps two users who share
// a temporary folder apart.
QString serverNameFor(const QString &folder)
{
    const QByteArray digest = QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha256).toHex();
    return u"tarnwick-%1-%2"_s.arg(getuid()).arg(QLatin1StringView(digest.first(16)));
}

// `path`, a part of which may not be there yet, without links: two spellings of one folder are one profile.
QString canonicalPath(const QString &path)
{
    const QString known = QFileInfo(path).canonicalFilePath();
    if (!known.isEmpty() || QFileInfo(path).isRoot())
        return known;
    return QDir(canonicalPath(QFileInfo(path).path())).filePath(QFileInfo(path).fileName());
}

} // namespace

SingleInstance::SingleInstance(const QString &folder, QObject *parent)
    : QObject(parent),
      m_folder(canonicalPath(QDir::cleanPath(QFileInfo(folder).absoluteFilePath()))),
      m_serverName(serverNameFor(m_folder))
{
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::claim(Wish wish)
{
    if (handOver(wish))
        return false;
    makePrivateFolder(m_folder);
    m_lock = std::make_unique<QLockFile>(m_folder + "/instance.lock"_L1);
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(lockMilliseconds)) {
        listen();
        return true;
    }
    if (m_lock->error() == QLockFile::LockFailedError) {
        // The holder was just starting and listens by now, or hangs: either way it keeps the profile.
        handOver(wish);
        return false;
    }
    // A folder that takes no lock file takes no conversations either; the program still starts and says so
    // there.
    qCWarning(instanceLog) << "No lock file can be written in" << m_folder;
    listen();
    return true;
}

void SingleInstance::stopAnswering()
{
    m_server.reset();
}

bool SingleInstance::handOver(Wish wish)
{
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (!socket.waitForConnected(handOverMilliseconds))
        return false;
    socket.write(wish == Wish::newChat ? newChatLine : showLine);
    socket.waitForBytesWritten(handOverMilliseconds);
    // The running instance closes the connection once it has taken note.
    if (socket.state() == QLocalSocket::ConnectedState)
        socket.waitForDisconnected(handOverMilliseconds);
    return true;
}

void SingleInstance::listen()
{
    // The lock is ours, so a socket of this name is what a crash left behind.
    QLocalServer::removeServer(m_serverName);
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server.get(), &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *const caller = m_server->nextPendingConnection())
            hear(caller);
    });
    if (!m_server->listen(m_serverName))
        qCWarning(instanceLog) << "Other launches cannot reach this one:" << m_server->errorString();
}

void SingleInstance::hear(QLocalSocket *caller)
{
    caller->setReadBufferSize(longestLine);
    connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
    const auto listenTo = [this, caller] {
        if (!caller->canReadLine() && caller->bytesAvailable() < longestLine)
            return;
        const QByteArray line = caller->readLine();
        caller->disconnectFromServer();
        if (line == newChatLine)
            Q_EMIT newChatRequested();
        else if (line == showLine)
            Q_EMIT showRequested();
    };
    connect(caller, &QLocalSocket::readyRead, this, listenTo);
    listenTo();
}
