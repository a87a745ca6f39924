// The program's one HTTP client: no cache, no cookies, no stored credentials. Loopback addresses are reached
// directly, all others through the desktop's proxy settings. Main thread only.
#pragma once

#include "platform/http/HttpRequest.h"
#include "platform/http/HttpTransfer.h"

class QNetworkAccessManager;

struct HttpAnswer
{
    HttpHead head;
    QByteArray body;

    bool operator==(const HttpAnswer &) const = default;
};

class HttpClient
{
public:
    // Made on first use; lives as long as the application object.
    static HttpClient &shared();

    ~HttpClient();
    HttpClient(const HttpClient &) = delete;
    HttpClient &operator=(const HttpClient &) = delete;

    // Sends `request`, whose body reaches the server at most once; `stop` cancels it, and so does quitting.
    // Every failure is reported by the transfer.
    HttpTransfer start(const HttpRequest &request, const StopToken &stop = {});

    // Sends `request` and waits for the answer's body, of which the first `bodyLimit` bytes are kept; -1 is
    // no limit. A status of 400 or more is an answer. Throws TransportError.
    Task<HttpAnswer> send(const HttpRequest &request, const StopToken &stop = {}, qint64 bodyLimit = -1);

private:
    HttpClient();

    // Each has a thread of its own, so that no server on this machine can hold up a download from elsewhere.
    std::unique_ptr<QNetworkAccessManager> m_forLoopback;
    std::unique_ptr<QNetworkAccessManager> m_forOthers;
};
