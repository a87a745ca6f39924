// One request to an HTTP server, as a plain value.
#pragma once

#include <QByteArray>
#include <QList>
#include <QUrl>

#include <chrono>
#include <utility>

struct HttpRequest
{
    QByteArray method = QByteArrayLiteral("GET");
    QUrl url = {}; // http or https
    QList<std::pair<QByteArray, QByteArray>> headers = {};
    QByteArray body = {}; // sent when not empty
    // How long the server may stay silent before the request fails as timed out.
    std::chrono::milliseconds idleTimeout = std::chrono::seconds(900);
    // How long the whole transfer may take.
    std::chrono::milliseconds transferTimeout = std::chrono::hours(24);
    // How many bytes of a body may wait to be read before the server is slowed down; 0 is no limit.
    qint64 readBufferSize = 0;

    // Whether a redirect is followed or is the answer itself.
    bool followRedirects = true;
    // Refuse an address that is not https, before anything is sent. Redirects never lead from https to http.
    bool secureOnly = false;

    bool operator==(const HttpRequest &) const = default;
};
