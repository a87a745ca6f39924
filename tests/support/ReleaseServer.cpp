#include "support/ReleaseServer.h"

#include <QCryptographicHash>
#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// It signs itself: whoever trusts it as an authority trusts the server.
QSslConfiguration makeIdentity()
{
    const QTemporaryDir folder;
    const QString key = folder.filePath(u"key.pem"_s);
    const QString certificate = folder.filePath(u"certificate.pem"_s);
    QProcess openssl;
    openssl.setProcessChannelMode(QProcess::MergedChannels);
    openssl.start(u"openssl"_s,
                  {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-days"_s, u"2"_s,
                   u"-subj"_s, u"/CN=Tarnwick test"_s, u"-addext"_s, u"subjectAltName=IP:127.0.0.1"_s,
                   u"-keyout"_s, key, u"-out"_s, certificate});
    if (!openssl.waitForFinished() || openssl.exitCode() != 0)
        qFatal("openssl made no certificate: %s", openssl.readAll().constData());
    QFile keyFile(key);
    if (!keyFile.open(QIODevice::ReadOnly))
        qFatal("openssl left no key");
    QSslConfiguration identity = QSslConfiguration::defaultConfiguration();
    identity.setPrivateKey(QSslKey(&keyFile, QSsl::Rsa));
    identity.setLocalCertificate(QSslCertificate::fromPath(certificate).value(0));
    return identity;
}

const QSslConfiguration &identity()
{
    static const QSslConfiguration instance = makeIdentity();
    return instance;
}

} // namespace

// One answer on its way. Sends no more at a time than the connection takes.
class ReleaseServer::Reply final : public QObject
{
public:
    Reply(QSslSocket &socket, const Answer &answer)
        : QObject(&socket), m_socket(socket), m_answer(answer), m_total(answer.body.size() * answer.times)
    {
        QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " X\r\nConnection: close\r\n";
        if (!answer.header.isEmpty())
            head += answer.header + "\r\n";
        if (answer.announced)
            head += "Content-Length: " + QByteArray::number(m_total) + "\r\n";
        m_socket.write(head + "\r\n");
        connect(&socket, &QSslSocket::encryptedBytesWritten, this, &Reply::send);
        send();
    }

    void release()
    {
        m_answer.heldAfter.reset();
        send();
    }

private:
    void send()
    {
        constexpr qint64 enough = 1024 * 1024;
        const qint64 end = m_answer.heldAfter.value_or(m_total);
        while (m_sent < end && m_socket.bytesToWrite() + m_socket.encryptedBytesToWrite() < enough) {
            const qint64 from = m_sent % m_answer.body.size();
            const qint64 count = std::min(m_answer.body.size() - from, end - m_sent);
            const qint64 taken = m_socket.write(m_answer.body.constData() + from, count);
            if (taken < 0)
                return; // the client has gone
            m_sent += taken;
        }
        if (m_sent == m_total)
            m_socket.disconnectFromHost();
    }

    QSslSocket &m_socket;
    Answer m_answer;
    const qint64 m_total;
    qint64 m_sent = 0;
};

ReleaseServer::ReleaseServer() : m_before(QSslConfiguration::defaultConfiguration())
{
    QSslConfiguration trusting = m_before;
    trusting.addCaCertificate(identity().localCertificate());
    QSslConfiguration::setDefaultConfiguration(trusting);
    m_server.setSslConfiguration(identity());
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("No port to listen on: %s", qUtf8Printable(m_server.errorString()));
    QObject::connect(&m_server, &QTcpServer::pendingConnectionAvailable, &m_server, [this] {
        auto *const socket = qobject_cast<QSslSocket *>(m_server.nextPendingConnection());
        ++m_connections;
        QObject::connect(socket, &QSslSocket::readyRead, socket, [this, socket] { receive(*socket); });
    });
}

ReleaseServer::~ReleaseServer()
{
    distrust();
}

void ReleaseServer::distrust()
{
    QSslConfiguration::setDefaultConfiguration(m_before);
}

QUrl ReleaseServer::url(const QString &path) const
{
    return QUrl(u"https://127.0.0.1:%1%2"_s.arg(m_server.serverPort()).arg(path));
}

InstallerOptions ReleaseServer::options() const
{
    InstallerOptions options;
    options.releaseService = url();
    return options;
}

void ReleaseServer::publish(const QByteArray &archive)
{
    const QByteArray address = url(u"/download"_s).toEncoded();
    setAnswer(recordPath, {.body = record(address, QByteArray::number(archive.size()), digestOf(archive))});
    setAnswer(u"/download"_s, {.status = 302, .header = "Location: " + url(archivePath).toEncoded()});
    setAnswer(archivePath, {.body = archive});
}

QByteArray ReleaseServer::record(const QByteArray &address, const QByteArray &size, const QByteArray &digest)
{
    return "{\"assets\":[{\"name\":\"" + InstallerOptions().assetName.toUtf8() + "\",\"digest\":\"" + digest +
           "\"," + (size.isEmpty() ? QByteArray() : "\"size\":" + size + ',') +
           "\"browser_download_url\":\"" + address + "\"}]}";
}

QByteArray ReleaseServer::digestOf(const QByteArray &file)
{
    return "sha256:" + QCryptographicHash::hash(file, QCryptographicHash::Sha256).toHex();
}

QByteArray ReleaseServer::header(qsizetype index, const QByteArray &name) const
{
    const QByteArrayList lines = m_requests.value(index).split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0)
            return line.sliced(colon + 1).trimmed();
    }
    return {};
}

void ReleaseServer::release()
{
    for (Answer &answer : m_answers)
        answer.heldAfter.reset();
    const QList<QObject *> children = m_server.findChildren<QObject *>();
    for (QObject *const child : children) {
        if (auto *const reply = dynamic_cast<Reply *>(child))
            reply->release();
    }
}

void ReleaseServer::receive(QSslSocket &socket)
{
    const QByteArray head = socket.peek(socket.bytesAvailable());
    if (!head.endsWith("\r\n\r\n"))
        return;
    socket.readAll();
    m_requests.append(head);
    const QString path = QString::fromUtf8(head.split(' ').value(1));
    const Answer none{.status = 404};
    new Reply(socket, m_answers.value(path, none));
}
