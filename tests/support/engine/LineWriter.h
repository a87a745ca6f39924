#pragma once

// Writes the lines of a streamed answer, and spoils them on the way as the request's faults demand.

#include "Connection.h"
#include "FaultPlan.h"

#include <QJsonObject>

#include <functional>
#include <string>
#include <string_view>

namespace demo {

class LineWriter
{
public:
    // False when the bytes could not be sent.
    using Output = std::function<bool(std::string_view bytes)>;

    enum class End
    {
        // The body ends as it should, whatever it held.
        clean,
        // The connection ends inside the body.
        broken,
        clientGone,
    };

    LineWriter(Output output, const FaultSet &faults, Connection &connection);

    // Faults in the middle of a stream strike after this many lines, three if it is never called.
    void setMiddle(int lines);
    // Collects small lines instead of sending each for itself.
    void setBuffered(bool buffered) { m_buffered = buffered; }

    // False when nothing more is to be written.
    bool write(const QJsonObject &line, bool last = false);
    // An error line; the stream is over then.
    void fail(const std::string &text);
    // Sends what is buffered. False when the client has gone.
    bool flush();
    End end();
    // Waits, and is false at once when the client goes away meanwhile.
    bool waitUntil(std::chrono::steady_clock::time_point time);

private:
    bool strikeMiddle();
    void stop(End end);
    void put(std::string_view line, bool last);
    QJsonObject spoiled(QJsonObject line);
    std::string serialized(const QJsonObject &line);

    Output m_output;
    const FaultSet &m_faults;
    Connection &m_connection;
    std::string m_buffer;
    std::string m_lineEnd;
    int m_middle = 3;
    int m_lines = 0;
    bool m_buffered = false;
    bool m_stopped = false;
    bool m_struck = false;
    bool m_invalidSent = false;
    End m_end = End::clean;
};

} // namespace demo
