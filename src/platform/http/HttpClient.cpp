#include "platform/http/HttpClient.h"

#include "platform/http/HttpExchange.h"
#include "platform/http/Loopback.h"
#include "platform/http/OneWayBody.h"
#include "platform/http/TransportError.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkRequest>

using namespace Qt::StringLiterals;

namespace {

class DirectToLoopback final : public QNetworkProxyFactory
{
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery &query) override
    {
        if (isLoopback(query.peerHostName()))
            return {QNetworkProxy::NoProxy};
        return systemProxyForQuery(query);
    }
};

QNetworkRequest platformRequest(const HttpRequest &request)
{
    QNetworkRequest result(request.url);
    result.setHeader(QNetworkRequest::UserAgentHeader, u"Tarnwick"_s);
    // Qt would ask for a compressed body and unpack it, and then does not notice one that was cut.
    result.setRawHeader("Accept-Encoding", "identity");
    // It would also tell the language of the desktop.
    result.setRawHeader("Accept-Language", "en");
    for (const auto &[name, value] : request.headers)
        result.setRawHeader(name, value);
    // Over HTTP/2 Qt takes no notice of the read buffer's size.
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    result.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    result.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                        request.followRedirects ? QNetworkRequest::NoLessSafeRedirectPolicy
                                                : QNetworkRequest::ManualRedirectPolicy);
    return result;
}

QNetworkReply *dispatch(QNetworkAccessManager &manager, const HttpRequest &request)
{
    QNetworkRequest prepared = platformRequest(request);
    if (request.body.isEmpty())
        return request.method == "GET" ? manager.get(prepared)
                                       : manager.sendCustomRequest(prepared, request.method);
    // Buffered, the body could be rewound after all.
    prepared.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    prepared.setHeader(QNetworkRequest::ContentLengthHeader, request.body.size());
    auto *const body = new OneWayBody(request.body);
    QNetworkReply *const reply = request.method == "POST"
                                     ? manager.post(prepared, body)
                                     : manager.sendCustomRequest(prepared, request.method, body);
    body->setParent(reply);
    return reply;
}

bool isWebAddress(const QUrl &url)
{
    return url.isValid() && (url.scheme() == "http"_L1 || url.scheme() == "https"_L1) &&
           !url.host().isEmpty();
}

// Why `request` must not be sent; empty when it may.
QString refusal(const HttpRequest &request)
{
    if (!isWebAddress(request.url))
        return QCoreApplication::translate("TransportError", "unsupported URL");
    if (request.secureOnly && request.url.scheme() != "https"_L1)
        return QCoreApplication::translate("TransportError", "The address does not use a secure connection.");
    return {};
}

std::unique_ptr<QNetworkAccessManager> makeManager()
{
    auto manager = std::make_unique<QNetworkAccessManager>();
    manager->setProxyFactory(new DirectToLoopback);
    manager->setAutoDeleteReplies(false);
    return manager;
}

Task<HttpAnswer> answerOf(HttpTransfer transfer, qint64 bodyLimit)
{
    HttpAnswer answer;
    answer.head = co_await transfer.head();
    answer.body = co_await transfer.readAll(bodyLimit);
    co_return answer;
}

} // namespace

HttpClient &HttpClient::shared()
{
    static std::unique_ptr<HttpClient> instance;
    if (!instance) {
        instance.reset(new HttpClient);
        // The manager's thread has to end before the application object does.
        qAddPostRoutine([] { instance.reset(); });
    }
    return *instance;
}

HttpClient::HttpClient() : m_forLoopback(makeManager()), m_forOthers(makeManager()) {}

HttpClient::~HttpClient() = default;

HttpTransfer HttpClient::start(const HttpRequest &request, const StopToken &stop)
{
    const auto exchange = HttpExchange::create(stop);
    if (const QString reason = refusal(request); !reason.isEmpty()) {
        exchange->fail(TransportError(TransportError::Code::other, reason));
    } else if (!exchange->isOver()) {
        const bool isHere = isLoopback(request.url.host());
        exchange->run(dispatch(isHere ? *m_forLoopback : *m_forOthers, request), request);
    }
    return HttpTransfer(exchange);
}

Task<HttpAnswer> HttpClient::send(const HttpRequest &request, const StopToken &stop, qint64 bodyLimit)
{
    return answerOf(start(request, stop), bodyLimit);
}
