#include "Exchange.h"

#include "EngineLog.h"
#include "FaultyJson.h"
#include "Json.h"

#include <utility>

namespace demo {

using namespace Qt::StringLiterals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto jsonType = "application/json; charset=utf-8";

bool breaksInTheMiddle(const FaultSet &faults)
{
    return faults.has("reset") || faults.has("close") || faults.has("bad-chunk") || faults.has("stall");
}

} // namespace

Exchange::Exchange(const httplib::Request &request, httplib::Response &response,
                   std::shared_ptr<Connection> connection, RequestLog &log)
    : m_response(response),
      m_connection(std::move(connection)),
      m_log(log),
      m_method(request.method),
      m_path(request.path),
      m_id(log.begin(request.method, request.path, request.body)),
      m_start(Clock::now())
{
}

Exchange::~Exchange()
{
    m_log.end(m_id, m_state, m_status);
    accessLine(m_status, Clock::now() - m_start, m_connection->clientAddress(), m_method, m_path);
}

bool Exchange::strikeEarly()
{
    const int defaultPause = 100;
    if (m_faults.has("bytes")) {
        m_connection->setShape(Connection::Shape::byteByByte,
                               std::chrono::microseconds(m_faults.number("bytes", defaultPause)));
    } else if (m_faults.has("cuts")) {
        m_connection->setShape(Connection::Shape::cutAnywhere,
                               std::chrono::microseconds(m_faults.number("cuts", defaultPause)));
    }
    if (m_faults.has("stall-early") && !m_connection->waitFor(stallTime(m_faults, "stall-early"))) {
        abandon(RequestLog::State::cut);
        return true;
    }
    if (m_faults.has("reset-early") || m_faults.has("close-early") || m_faults.has("not-http")) {
        const bool reset = m_faults.has("reset-early");
        m_connection->cut(reset ? Connection::Ending::reset : Connection::Ending::close,
                          m_faults.has("not-http") ? "220 demo.example ESMTP ready\r\n" : "");
        abandon(RequestLog::State::faulted);
        return true;
    }
    if (m_faults.has("endless-error")) {
        replyEndlessly(m_faults.number("endless-error", 500));
        return true;
    }
    if (m_faults.has("status")) {
        const FaultyStatus answer = faultyStatus(m_faults.value("status"));
        replyBytes(answer.status, answer.body, answer.contentType);
        return true;
    }
    return false;
}

void Exchange::reply(const QJsonObject &answer, int status)
{
    if (m_faults.has("not-json") || m_faults.has("empty-body")) {
        replyBytes(status, m_faults.has("not-json") ? R"({"models":[{"name":)" : "", jsonType);
        return;
    }
    QJsonObject spoiled = answer;
    if (m_faults.has("wrong-types")) {
        spoiled = withWrongTypes(spoiled);
    }
    if (m_faults.has("text-numbers")) {
        spoiled = withTextNumbers(spoiled);
    }
    replyBytes(status, compact(spoiled), jsonType);
}

void Exchange::replyError(int status, const std::string &text)
{
    replyBytes(status, compact({{"error"_L1, toQt(text)}}), jsonType);
}

void Exchange::replyBytes(int status, const std::string &body, const std::string &contentType)
{
    m_status = status;
    m_response.status = status;
    if (!breaksInTheMiddle(m_faults) || body.size() < 2) {
        m_response.set_content(body, contentType);
        return;
    }
    m_response.set_content_provider(
        body.size(), contentType,
        [self = shared_from_this(), body](std::size_t, std::size_t, httplib::DataSink &sink) {
            return self->sendBroken(body, sink);
        });
}

void Exchange::abandon(RequestLog::State state)
{
    m_state = state;
    m_status = 499;
    m_response.status = 200;
}

bool Exchange::sendBroken(const std::string &body, httplib::DataSink &sink)
{
    const std::size_t half = body.size() / 2;
    if (!sink.write(body.data(), half)) {
        m_state = RequestLog::State::cut;
        return false;
    }
    if (m_faults.has("stall") && m_connection->waitFor(stallTime(m_faults, "stall"))) {
        return sink.write(body.data() + half, body.size() - half);
    }
    m_state = m_faults.has("stall") ? RequestLog::State::cut : RequestLog::State::faulted;
    if (m_faults.has("reset")) {
        m_connection->endWith(Connection::Ending::reset);
    } else if (m_faults.has("bad-chunk")) {
        m_connection->endWith(Connection::Ending::badChunk);
    }
    return false;
}

void Exchange::stream(Producer producer)
{
    m_response.status = 200;
    m_response.set_chunked_content_provider(
        "application/x-ndjson",
        [self = shared_from_this(), producer = std::move(producer)](std::size_t, httplib::DataSink &sink) {
            return self->runStream(producer, sink);
        });
}

bool Exchange::runStream(const Producer &producer, httplib::DataSink &sink)
{
    LineWriter writer([&sink](std::string_view bytes) { return sink.write(bytes.data(), bytes.size()); },
                      m_faults, *m_connection);
    try {
        producer(writer);
    } catch (const std::exception &problem) {
        logLine("ERROR", "server.go:1", problem.what());
        writer.fail(problem.what());
    }
    switch (writer.end()) {
    case LineWriter::End::clean:
        sink.done();
        return true;
    case LineWriter::End::broken:
        m_state = RequestLog::State::faulted;
        return false;
    case LineWriter::End::clientGone:
        m_state = RequestLog::State::cut;
        return false;
    }
    return false;
}

void Exchange::replyEndlessly(int status)
{
    m_status = status;
    m_response.status = status;
    m_response.set_chunked_content_provider(
        jsonType, [self = shared_from_this()](std::size_t, httplib::DataSink &sink) {
            std::string piece = R"({"error":")";
            do {
                if (!sink.write(piece.data(), piece.size())) {
                    break;
                }
                piece.assign(2048, 'x');
            } while (self->m_connection->waitFor(std::chrono::milliseconds(5)));
            self->m_state = RequestLog::State::cut;
            return false;
        });
}

} // namespace demo
