#include "platform/http/HttpExchange.h"

#include "platform/async/Launch.h"
#include "platform/async/MainThread.h"
#include "platform/http/Loopback.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Code = TransportError::Code;

int statusOf(const QNetworkReply &reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
}

// For what the system says and Qt has no name for: that no way leads to the server or that the one in use is
// gone, and of a server on this machine that it ended while it was being connected to.
Code codeOfUnnamed(const QNetworkReply &reply)
{
    if (isLoopback(reply.url().host()))
        return Code::cannotConnect;
    return statusOf(reply) != 0 ? Code::connectionLost : Code::notConnectedToInternet;
}

// A connection that ends too early is the network's doing, except on this machine: there the server has gone.
Code codeOfLoss(const QNetworkReply &reply)
{
    return isLoopback(reply.url().host()) ? Code::cannotConnect : Code::connectionLost;
}

TransportError transportError(const QNetworkReply &reply)
{
    switch (reply.error()) {
    case QNetworkReply::ConnectionRefusedError:
        return TransportError(Code::cannotConnect);
    // The second is what Qt says where it would have sent the body again.
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::ContentReSendError:
        return TransportError(codeOfLoss(reply));
    case QNetworkReply::HostNotFoundError:
        return TransportError(Code::cannotFindHost);
    case QNetworkReply::TimeoutError:
        return TransportError(Code::timedOut);
    case QNetworkReply::UnknownNetworkError:
        return TransportError(codeOfUnnamed(reply));
    case QNetworkReply::OperationCanceledError:
        return TransportError(Code::cancelled);
    default:
        return TransportError(Code::other, reply.errorString());
    }
}

// Qt reports a status of 400 and above as an error, behind the whole answer.
bool isMerelyStatus(QNetworkReply::NetworkError error, int status)
{
    switch (error) {
    case QNetworkReply::ContentReSendError:
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolFailure:
        return false;
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return status >= 400;
    default:
        return status >= 400 && error >= QNetworkReply::ContentAccessDenied;
    }
}

// Qt follows these where it may, and tells the head of each.
bool isRedirect(int status)
{
    return (status >= 301 && status <= 303) || status == 305 || status == 307 || status == 308;
}

bool isLost(QNetworkReply::NetworkError error)
{
    return error == QNetworkReply::RemoteHostClosedError || error == QNetworkReply::ContentReSendError;
}

} // namespace

std::shared_ptr<HttpExchange> HttpExchange::create(const StopToken &stop)
{
    const std::shared_ptr<HttpExchange> exchange(new HttpExchange);
    // Only queued: aborting a reply runs its waiters inside the call.
    const auto cancel = [weak = std::weak_ptr(exchange)] {
        postToMain([weak] {
            if (const auto running = weak.lock())
                running->fail(TransportError(Code::cancelled));
        });
    };
    if (stop.stopRequested() || quitToken().stopRequested()) {
        exchange->fail(TransportError(Code::cancelled));
    } else {
        exchange->m_onStop.emplace(stop, cancel);
        exchange->m_onQuit.emplace(quitToken(), cancel);
    }
    return exchange;
}

HttpExchange::~HttpExchange()
{
    letGo();
}

void HttpExchange::run(QNetworkReply *reply, const HttpRequest &request)
{
    m_reply = reply;
    connect(reply, &QNetworkReply::metaDataChanged, this, &HttpExchange::onHead);
    connect(reply, &QNetworkReply::readyRead, this, &HttpExchange::onBytes);
    connect(reply, &QNetworkReply::finished, this, &HttpExchange::onFinished);
    // A request with a body, and one that is redirected, starts in a later turn and forgets what was set
    // before. Set once bytes have come, it would allow as many more.
    const auto limitBuffer = [reply, size = request.readBufferSize] {
        const auto set = [reply, size] { reply->setReadBufferSize(size); };
        set();
        QMetaObject::invokeMethod(reply, set, Qt::QueuedConnection);
    };
    connect(reply, &QNetworkReply::redirected, this, limitBuffer);
    limitBuffer();

    m_followsRedirects = request.followRedirects;
    m_idleTimeout = request.idleTimeout;
    m_idle.setSingleShot(true);
    connect(&m_idle, &QTimer::timeout, this, &HttpExchange::onQuiet);
    m_quiet.start();
    m_idle.start(m_idleTimeout);

    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] { fail(TransportError(Code::timedOut)); });
    m_limit.start(request.transferTimeout);
}

void HttpExchange::fail(const TransportError &error)
{
    if (m_over)
        return;
    m_error = std::make_exception_ptr(error);
    m_over = true;
    m_dropped = true;
    letGo();
    announce();
}

std::optional<HttpHead> HttpExchange::head() const
{
    if (m_error && (m_dropped || !m_head))
        std::rethrow_exception(m_error);
    return m_head;
}

QByteArray HttpExchange::take(qint64 limit)
{
    if (m_reply && !m_dropped && m_reply->bytesAvailable() > 0)
        return m_reply->read(std::min(limit, m_reply->bytesAvailable()));
    if (m_error)
        std::rethrow_exception(m_error);
    return {};
}

const Completion<> &HttpExchange::nextChange()
{
    m_change = Completion<>();
    return m_change;
}

void HttpExchange::onHead()
{
    m_quiet.restart();
    const int status = statusOf(*m_reply);
    if (m_head || status == 0 || (m_followsRedirects && isRedirect(status)))
        return;
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    m_head = HttpHead{status, length.isValid() ? length.toLongLong() : -1};
    announce();
}

void HttpExchange::onBytes()
{
    m_quiet.restart();
    announce();
}

void HttpExchange::onFinished()
{
    m_idle.stop();
    m_limit.stop();
    const QNetworkReply::NetworkError error = m_reply->error();
    const QUrl url = m_reply->url();
    if (statusOf(*m_reply) == 0 && isLost(error) && isLoopback(url.host()) && url.scheme() == "http"_L1) {
        m_probe.emplace(url, [this](bool notHttp) { conclude(notHttp); });
        return;
    }
    conclude(false);
}

void HttpExchange::conclude(bool notHttp)
{
    const QNetworkReply::NetworkError error = m_reply->error();
    const int status = statusOf(*m_reply);
    m_over = true;
    if (error != QNetworkReply::NoError && !notHttp && !isMerelyStatus(error, status))
        m_error = std::make_exception_ptr(transportError(*m_reply));
    else if (!m_head)
        m_head = HttpHead{status, -1};
    announce();
}

// The timer is not wound up again for every batch; it looks at the clock when it fires.
void HttpExchange::onQuiet()
{
    // The server is not to blame for bytes that nobody has read yet.
    if (m_reply && m_reply->bytesAvailable() > 0)
        m_quiet.restart();
    const std::chrono::milliseconds left = m_idleTimeout - std::chrono::milliseconds(m_quiet.elapsed());
    if (left.count() > 0)
        m_idle.start(left);
    else
        fail(TransportError(Code::timedOut));
}

void HttpExchange::letGo()
{
    m_idle.stop();
    m_limit.stop();
    m_probe.reset();
    if (!m_reply)
        return;
    m_reply->disconnect(this);
    m_reply->abort();
    m_reply->deleteLater();
    m_reply.clear();
}

void HttpExchange::announce()
{
    m_change.complete();
}
