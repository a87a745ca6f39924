// Downloads 20 MB and 2 GB over TLS from a server on the loopback address, each in a process of its own, and
// tells how much more memory the one needed than the other, and how long the main thread was away from its
// event loop at most: in all, which counts the times when other threads had its processor, and with work of
// its own. The server is one more process; its certificate comes from the openssl command.
#include "Figures.h"
#include "core/engine/FileDownloader.h"
#include "core/engine/InstallStatus.h"
#include "core/models/SpeedMeter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <utility>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 small = 20'000'000;
constexpr qint64 large = 2'000'000'000;
const QString keyName = u"key.pem"_s;
const QString certificateName = u"certificate.pem"_s;

void makeIdentity(const QString &folder)
{
    QProcess openssl;
    openssl.setWorkingDirectory(folder);
    openssl.start(u"openssl"_s,
                  {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-days"_s, u"2"_s,
                   u"-subj"_s, u"/CN=Tarnwick benchmark"_s, u"-addext"_s, u"subjectAltName=IP:127.0.0.1"_s,
                   u"-keyout"_s, keyName, u"-out"_s, certificateName});
    if (!openssl.waitForFinished() || openssl.exitCode() != 0)
        qFatal("openssl made no certificate: %s", openssl.readAllStandardError().constData());
}

QSslCertificate certificate(const QString &folder)
{
    return QSslCertificate::fromPath(folder + u'/' + certificateName).value(0);
}

// Answers "GET /{bytes}" with as many, until it is killed.
int serve(const QString &folder)
{
    QFile keyFile(folder + u'/' + keyName);
    if (!keyFile.open(QIODevice::ReadOnly))
        qFatal("There is no key");
    QSslConfiguration identity = QSslConfiguration::defaultConfiguration();
    identity.setPrivateKey(QSslKey(&keyFile, QSsl::Rsa));
    identity.setLocalCertificate(certificate(folder));
    QSslServer server;
    server.setSslConfiguration(identity);
    server.listen(QHostAddress::LocalHost);
    QObject::connect(&server, &QTcpServer::pendingConnectionAvailable, &server, [&server] {
        auto *const socket = qobject_cast<QSslSocket *>(server.nextPendingConnection());
        const auto left = std::make_shared<qint64>(0);
        const auto send = [socket, left] {
            static const QByteArray piece(64 * 1024, 'x');
            constexpr qint64 enough = 512 * 1024;
            while (*left > 0 && socket->bytesToWrite() + socket->encryptedBytesToWrite() < enough)
                *left -= socket->write(piece.constData(), std::min<qint64>(piece.size(), *left));
        };
        QObject::connect(socket, &QSslSocket::readyRead, socket, [socket, left, send] {
            const QByteArray path = socket->readAll().split(' ').value(1);
            *left = path.sliced(1).toLongLong();
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(*left) + "\r\n\r\n");
            send();
        });
        QObject::connect(socket, &QSslSocket::encryptedBytesWritten, socket, send);
    });
    std::printf("%d\n", server.serverPort());
    std::fflush(stdout);
    return QCoreApplication::exec();
}

// The most memory that this process has had, in bytes.
qint64 peakMemory()
{
#ifdef Q_OS_LINUX
    // What getrusage() tells includes the parent's, from before this program was loaded.
    QFile status(u"/proc/self/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    return text.sliced(text.indexOf("VmHWM:") + 6).trimmed().split(' ').first().toLongLong() * 1024;
#else
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
#endif
}

struct Figures
{
    qint64 memory = 0;      // bytes
    double longestGap = 0;  // milliseconds
    double longestWork = 0; // milliseconds
    double duration = 0;    // milliseconds
};

double milliseconds(const QElapsedTimer &clock)
{
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

Task<> fetch(QString folder, QUrl url, bool *done)
{
    FileDownloader downloader(folder + "/archive"_L1);
    SpeedMeter meter;
    downloader.onProgress = [&meter](qint64 received, qint64 expected) {
        meter.update(received);
        downloadStatus(received, expected, 0, meter.speed());
    };
    HttpRequest request;
    request.url = url;
    request.secureOnly = true;
    co_await downloader.download(request);
    *done = true;
}

int download(const QString &folder, const QString &port, const QString &bytes)
{
    QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
    trusting.addCaCertificate(certificate(folder));
    QSslConfiguration::setDefaultConfiguration(trusting);

    QElapsedTimer whole;
    whole.start();
    bool done = false;
    const Task<> fetching = fetch(folder, QUrl(u"https://127.0.0.1:%1/%2"_s.arg(port, bytes)), &done);
    QElapsedTimer sinceTick;
    sinceTick.start();
    double workAtTick = threadTime();
    double longestGap = 0;
    double longestWork = 0;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, &tick, [&] {
        longestGap = std::max(longestGap, milliseconds(sinceTick));
        sinceTick.restart();
        const double work = threadTime();
        longestWork = std::max(longestWork, work - std::exchange(workAtTick, work));
        if (done)
            QCoreApplication::quit();
    });
    tick.start(std::chrono::milliseconds(1));
    QCoreApplication::exec();
    if (QFileInfo(folder + "/archive"_L1).size() != bytes.toLongLong())
        qFatal("The file is not whole");
    std::printf("%lld %f %f %f\n", static_cast<long long>(peakMemory()), longestGap, longestWork,
                milliseconds(whole));
    return 0;
}

Figures measure(const QString &folder, const QString &port, qint64 bytes)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(),
                  {u"download"_s, folder, port, QString::number(bytes)});
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        qFatal("The download failed");
    const QByteArrayList told = process.readAll().trimmed().split(' ');
    return {told.value(0).toLongLong(), told.value(1).toDouble(), told.value(2).toDouble(),
            told.value(3).toDouble()};
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "serve"_L1)
        return serve(arguments.value(2));
    if (arguments.value(1) == "download"_L1)
        return download(arguments.value(2), arguments.value(3), arguments.value(4));

    const QTemporaryDir folder;
    makeIdentity(folder.path());
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start(QCoreApplication::applicationFilePath(), {u"serve"_s, folder.path()});
    if (!server.waitForReadyRead(-1))
        qFatal("The server did not start");
    const QString port = QString::fromUtf8(server.readAll().trimmed());

    const Figures few = measure(folder.path(), port, small);
    const Figures many = measure(folder.path(), port, large);
    server.kill();
    server.waitForFinished();

    const auto megabytes = [](qint64 bytes) { return static_cast<double>(bytes) / 1e6; };
    std::printf("download: peak memory for 20 MB  %7.1f MB\n", megabytes(few.memory));
    std::printf("download: peak memory for 2 GB   %7.1f MB, %.1f MB more (promised: within 10 MB)\n",
                megabytes(many.memory), megabytes(many.memory - few.memory));
    std::printf("download: longest gap of the main thread during 2 GB  %.1f ms, its longest work %.1f ms\n",
                many.longestGap, many.longestWork);
    std::printf("download: 2 GB took %.1f s\n", many.duration / 1000);
    return 0;
}
