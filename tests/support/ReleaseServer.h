// A release service and its download host, over TLS on a port of its own, with a certificate made afresh. It
// answers what the test told it to and remembers what it was asked.
#pragma once

#include "core/engine/InstallerOptions.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QSslConfiguration>
#include <QSslServer>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>
#include <optional>

class ReleaseServer
{
public:
    struct Answer
    {
        int status = 200;
        QByteArray body = {};
        int times = 1;                        // how often the body is sent
        QByteArray header = {};               // one more, without the line end
        bool announced = true;                // whether the length is told before
        std::optional<qint64> heldAfter = {}; // bytes of the body; the rest waits for release()
    };

    // While the server lives, this program trusts its certificate along with those of the system. Ends the
    // test program when there is no certificate to be had.
    ReleaseServer();
    ~ReleaseServer();
    ReleaseServer(const ReleaseServer &) = delete;
    ReleaseServer &operator=(const ReleaseServer &) = delete;

    // As if this server's certificate had been signed by a stranger.
    void distrust();

    QUrl url(const QString &path = {}) const;
    // The standard ones, with this server as the release service.
    InstallerOptions options() const;

    void setAnswer(const QString &path, const Answer &answer) { m_answers[path] = answer; }
    Answer &answer(const QString &path) { return m_answers[path]; }
    // A latest release whose record has `archive` as its asset for this system, behind a redirect.
    void publish(const QByteArray &archive);
    // The record of a release with one asset, `size` being a JSON text or empty.
    static QByteArray record(const QByteArray &address, const QByteArray &size,
                             const QByteArray &digest = {});
    static QByteArray digestOf(const QByteArray &file);
    // The value of a header of the request that came as number `index`, however its name is written.
    QByteArray header(qsizetype index, const QByteArray &name) const;
    // Sends what was held back, now and from now on.
    void release();

    // The heads of the requests that have arrived, oldest first.
    const QByteArrayList &requests() const { return m_requests; }
    int connections() const { return m_connections; }

    static inline const QString recordPath = QStringLiteral("/repos/ollama/ollama/releases/latest");
    static inline const QString archivePath = QStringLiteral("/elsewhere/archive");

private:
    class Reply;
    void receive(QSslSocket &socket);

    QSslServer m_server;
    QSslConfiguration m_before;
    QHash<QString, Answer> m_answers;
    QByteArrayList m_requests;
    int m_connections = 0;
};
