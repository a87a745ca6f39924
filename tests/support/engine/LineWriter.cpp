#include "LineWriter.h"

#include "FaultyJson.h"
#include "Json.h"

#include <algorithm>
#include <utility>

namespace demo {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t bufferedBytes = 32 * 1024;
constexpr int hugeLineBytes = 4 * 1024 * 1024;

std::string lineEndFor(const FaultSet &faults)
{
    if (faults.has("crlf")) {
        return "\r\n";
    }
    return faults.has("cr") ? "\r" : "\n";
}

} // namespace

LineWriter::LineWriter(Output output, const FaultSet &faults, Connection &connection)
    : m_output(std::move(output)), m_faults(faults), m_connection(connection), m_lineEnd(lineEndFor(faults))
{
    for (const char *name : {"error-line", "runner-died", "early-end", "reset", "close", "bad-chunk"}) {
        m_middle = m_faults.number(name, m_middle);
    }
}

void LineWriter::setMiddle(int lines)
{
    m_middle = std::clamp(m_middle, 0, lines);
}

bool LineWriter::write(const QJsonObject &line, bool last)
{
    if (m_stopped || (m_lines >= m_middle && !std::exchange(m_struck, true) && !strikeMiddle())) {
        return false;
    }
    if (m_lines == 0 && m_faults.has("error-first")) {
        const std::string text = m_faults.value("error-first");
        fail(text.empty() ? "the demonstration engine was asked to fail" : text);
        return false;
    }
    const std::string text = serialized(spoiled(line));
    if (m_faults.has("truncated-lines")) {
        put(std::string_view(text).substr(0, text.size() / 2), false);
    }
    if (m_faults.has("blank-lines")) {
        put({}, false);
    }
    put(text, last);
    ++m_lines;
    if (m_buffered && m_buffer.size() < bufferedBytes) {
        return true;
    }
    return flush();
}

void LineWriter::fail(const std::string &text)
{
    if (!m_stopped) {
        put(compact({{"error"_L1, toQt(text)}}), true);
        flush();
        stop(End::clean);
    }
}

bool LineWriter::flush()
{
    if (!m_buffer.empty() && !m_stopped) {
        const bool sent = m_output(m_buffer);
        m_buffer.clear();
        if (!sent || m_connection.clientGone()) {
            stop(End::clientGone);
        }
    }
    return !m_stopped;
}

LineWriter::End LineWriter::end()
{
    flush();
    return m_end;
}

bool LineWriter::waitUntil(std::chrono::steady_clock::time_point time)
{
    if (!m_stopped && !m_connection.waitUntil(time)) {
        stop(End::clientGone);
    }
    return !m_stopped;
}

void LineWriter::stop(End end)
{
    m_stopped = true;
    m_end = end;
}

bool LineWriter::strikeMiddle()
{
    if (m_faults.has("error-line") || m_faults.has("runner-died")) {
        const std::string text = m_faults.value("error-line");
        const bool custom = !text.empty() && m_faults.number("error-line", -1) < 0;
        fail(custom ? text : "an error was encountered while running the model: unexpected EOF");
        return false;
    }
    if (!flush()) {
        return false;
    }
    if (m_faults.has("early-end")) {
        stop(End::clean);
    } else if (m_faults.has("reset")) {
        m_connection.endWith(Connection::Ending::reset);
        stop(End::broken);
    } else if (m_faults.has("close")) {
        m_connection.endWith(Connection::Ending::close);
        stop(End::broken);
    } else if (m_faults.has("bad-chunk")) {
        m_connection.endWith(Connection::Ending::badChunk);
        stop(End::broken);
    } else if (m_faults.has("stall")) {
        waitUntil(std::chrono::steady_clock::now() + stallTime(m_faults, "stall"));
    }
    return !m_stopped;
}

void LineWriter::put(std::string_view line, bool last)
{
    m_buffer.append(line);
    if (!last || !m_faults.has("no-last-newline")) {
        m_buffer.append(m_lineEnd);
    }
}

QJsonObject LineWriter::spoiled(QJsonObject line)
{
    if (m_faults.has("no-message")) {
        line.remove("message"_L1);
    }
    if (m_faults.has("huge-lines") && m_lines == 0) {
        line.insert("padding"_L1, QString(m_faults.number("huge-lines", hugeLineBytes), u'x'));
    }
    if (m_faults.has("invalid-utf8") && !m_invalidSent) {
        m_invalidSent = markForInvalidUtf8(line);
    }
    if (m_faults.has("wrong-types")) {
        line = withWrongTypes(line);
    }
    if (m_faults.has("text-numbers")) {
        line = withTextNumbers(line);
    }
    return line;
}

std::string LineWriter::serialized(const QJsonObject &line)
{
    std::string text = compact(line);
    if (m_faults.has("invalid-utf8")) {
        breakMarkedUtf8(text);
    }
    return text;
}

} // namespace demo
