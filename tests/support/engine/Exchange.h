#pragma once

// One request and its answer. It knows the faults that the request has to show, and enters its own end into
// the request log and the access log when the last owner lets go of it.

#include "Connection.h"
#include "FaultPlan.h"
#include "LineWriter.h"
#include "RequestLog.h"

#include <QJsonObject>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <httplib.h>

namespace demo {

class Exchange : public std::enable_shared_from_this<Exchange>
{
public:
    Exchange(const httplib::Request &request, httplib::Response &response,
             std::shared_ptr<Connection> connection, RequestLog &log);
    ~Exchange();
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;

    Connection &connection() const { return *m_connection; }
    void setFaults(FaultSet faults) { m_faults = std::move(faults); }
    const FaultSet &faults() const { return m_faults; }

    // Faults that leave nothing for the endpoint to do. True when the answer is settled.
    bool strikeEarly();

    void reply(const QJsonObject &answer, int status = 200);
    void replyError(int status, const std::string &text);
    void replyBytes(int status, const std::string &body, const std::string &contentType);
    // The client went away, or is sent away, without an answer.
    void abandon(RequestLog::State state);

    // Runs the producer once the head of the answer is out.
    using Producer = std::function<void(LineWriter &writer)>;
    void stream(Producer producer);

private:
    bool runStream(const Producer &producer, httplib::DataSink &sink);
    bool sendBroken(const std::string &body, httplib::DataSink &sink);
    void replyEndlessly(int status);

    httplib::Response &m_response;
    std::shared_ptr<Connection> m_connection;
    RequestLog &m_log;
    const std::string m_method;
    const std::string m_path;
    const std::uint64_t m_id;
    const std::chrono::steady_clock::time_point m_start;
    FaultSet m_faults;
    RequestLog::State m_state = RequestLog::State::finished;
    int m_status = 200;
};

} // namespace demo
