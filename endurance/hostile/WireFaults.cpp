#include "WireFaults.h"

#include <QMap>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

using End = WireEnd;
constexpr qint64 mebi = 1024 * 1024;

// Of what goes out without an end. Nobody should read so much of it.
constexpr qint64 endless = 96 * mebi;

QByteArray head(const char *status, const QByteArray &fields)
{
    return QByteArray("HTTP/1.1 ") + status + "\r\n" + fields + "\r\n";
}

QByteArray chunk(const QByteArray &bytes)
{
    return QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n";
}

using Wire = std::function<WireAnswer(const QByteArray &body)>;

Wire withHead(const QByteArray &lines, const QByteArray &behind = {}, End end = End::close)
{
    return [=](const QByteArray &body) {
        return WireAnswer{.bytes = lines + "\r\n" + body + behind, .end = end};
    };
}

Wire withField(const QByteArray &field, End end = End::close)
{
    return withHead("HTTP/1.1 200 OK\r\n" + field + "\r\n", {}, end);
}

Wire withStatus(const char *status, const QByteArray &fields = {})
{
    return [=](const QByteArray &body) {
        return WireAnswer{
            .bytes =
                head(status, fields + "Content-Length: " + QByteArray::number(body.size()) + "\r\n") + body,
            .end = End::keep};
    };
}

// A chunked body with `border` in the middle of it.
Wire withBorder(const QByteArray &border, End end = End::close)
{
    return [=](const QByteArray &body) {
        const QByteArray half = body.first(body.size() / 2);
        return WireAnswer{.bytes = head("200 OK", "Transfer-Encoding: chunked\r\n") + chunk(half) + border,
                          .end = end};
    };
}

Wire withTail(const QByteArray &start, const QByteArray &unit, qint64 size = endless)
{
    return [=](const QByteArray &) {
        return WireAnswer{.bytes = start, .tail = unit.repeated(1 + 65536 / unit.size()), .tailBytes = size};
    };
}

// Zeros, packed as tightly as they can be. Qt puts their number in front.
QByteArray bomb()
{
    return qCompress(QByteArray(64 * mebi, '\0')).sliced(4);
}

const QMap<QString, Wire> &recipes()
{
    static const QByteArray ok = "HTTP/1.1 200 OK\r\n";
    static const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    static const QMap<QString, Wire> all{
        {u"nothing"_s, [](const QByteArray &) { return WireAnswer{.bytes = {}}; }},
        {u"reset"_s, [](const QByteArray &) { return WireAnswer{.bytes = {}, .end = End::reset}; }},
        {u"silence in the head"_s,
         [](const QByteArray &) { return WireAnswer{.bytes = ok + "Content-", .end = End::silence}; }},
        {u"slow head"_s,
         [](const QByteArray &body) {
             return WireAnswer{.bytes = ok + QByteArray("A: b\r\n").repeated(200) + "\r\n" + body,
                               .pieceBytes = 1};
         }},
        {u"slow body"_s,
         [](const QByteArray &body) { return WireAnswer{.bytes = ok + "\r\n" + body, .pieceBytes = 1}; }},
        {u"cut head"_s, [](const QByteArray &) { return WireAnswer{.bytes = ok + "Conte"}; }},
        {u"silence in the body"_s,
         [](const QByteArray &body) {
             return WireAnswer{.bytes = ok + "Content-Length: 99\r\n\r\n" + body, .end = End::silence};
         }},
        {u"reset in the body"_s, withField("Content-Length: 999999\r\n", End::reset)},
        {u"too short"_s, withField("Content-Length: 999999\r\n")},
        {u"too long"_s, withField("Content-Length: 1\r\n", End::keep)},
        {u"no length"_s, withField("")},
        {u"negative length"_s, withField("Content-Length: -1\r\n")},
        {u"length no number"_s, withField("Content-Length: 1e9\r\n")},
        {u"length out of range"_s, withField("Content-Length: 99999999999999999999\r\n")},
        {u"greatest length"_s, withField("Content-Length: 9223372036854775807\r\n")},
        {u"two lengths"_s, withField("Content-Length: 1\r\nContent-Length: 5\r\n")},
        {u"length and chunks"_s, withField("Content-Length: 5\r\nTransfer-Encoding: chunked\r\n")},
        {u"unknown encoding"_s, withField("Transfer-Encoding: gzip\r\n")},
        {u"no chunks"_s, withField("Transfer-Encoding: chunked\r\n")},
        {u"border that is none"_s, withBorder("zz\r\n")},
        {u"negative chunk"_s, withBorder("-5\r\nhello\r\n")},
        {u"huge chunk"_s, withBorder("7fffffffffffffff\r\nhello")},
        {u"chunk out of range"_s, withBorder("fffffffffffffffffff\r\nhello")},
        {u"cut chunk"_s, withBorder("ff\r\nhello")},
        {u"reset in a chunk"_s, withBorder("ff\r\nhello", End::reset)},
        {u"endless border"_s, withTail(chunked, "0", endless)},
        {u"endless extension"_s, withTail(chunked + "5;", "a", endless)},
        {u"endless trailer"_s, withTail(chunked + "0\r\n", "A: b\r\n", endless)},
        {u"endless body"_s, withTail(ok + "\r\n", "{\"a\":1} ")},
        {u"endless chunks"_s, withTail(chunked, "1\r\n \r\n", 8 * mebi)},
        {u"endless error"_s, withTail(head("500 X", {}), "{\"error\":\"a\"} ")},
        {u"endless redirect"_s, withTail(head("302 X", "Location: /\r\n"), "a")},
        {u"endless status line"_s, withTail("HTTP/1.1 200 ", "O")},
        {u"endless name"_s, withTail(ok, "A")},
        {u"endless value"_s, withTail(ok + "A: ", "b")},
        {u"endless heads"_s, withTail(ok, "A: b\r\n")},
        {u"endless folds"_s, withTail(ok + "A: b\r\n", " c\r\n")},
        {u"endless interim answers"_s, withTail({}, "HTTP/1.1 100 Continue\r\n\r\n")},
        {u"endless early hints"_s, withTail({}, "HTTP/1.1 103 X\r\nLink: a\r\n\r\n")},
        {u"many heads"_s, withHead(ok + QByteArray("Set-Cookie: a=b\r\n").repeated(1000))},
        {u"head without colon"_s, withHead(ok + "nothing\r\n")},
        {u"head with zeros"_s, withHead(ok + QByteArray("A\0: \0\r\n", 8))},
        {u"line feeds alone"_s,
         [](const QByteArray &body) { return WireAnswer{.bytes = "HTTP/1.1 200 OK\n\n" + body}; }},
        {u"version 0.9"_s, [](const QByteArray &body) { return WireAnswer{.bytes = body}; }},
        {u"version 1.0"_s, withHead("HTTP/1.0 200 OK\r\n")},
        {u"version 9.9"_s, withHead("HTTP/9.9 200 OK\r\n")},
        {u"no version"_s, withHead("HTTP/ 200 OK\r\n")},
        {u"another protocol"_s,
         [](const QByteArray &) { return WireAnswer{.bytes = "SSH-2.0-OpenSSH_9.2\r\n"}; }},
        {u"noise"_s,
         [](const QByteArray &) {
             return WireAnswer{.bytes = QByteArray("\x00\xff\x16\x03\x01", 5).repeated(100'000)};
         }},
        {u"status 0"_s, withStatus("000 X")},
        {u"status 99999"_s, withStatus("99999 X")},
        {u"status -1"_s, withStatus("-1 X")},
        {u"status 101"_s, withStatus("101 X", "Upgrade: h2c\r\n")},
        {u"status 204"_s, withStatus("204 X")},
        {u"status 206"_s, withStatus("206 X", "Content-Range: bytes 0-1/*\r\n")},
        {u"status 302"_s, withStatus("302 X", "Location: http://127.0.0.1:1/\r\n")},
        {u"status 304"_s, withStatus("304 X")},
        {u"status 307 to itself"_s, withStatus("307 X", "Location: \r\n")},
        {u"status 401"_s,
         withStatus("401 X", "WWW-Authenticate: Basic realm=\"a\"\r\nWWW-Authenticate: Negotiate\r\n")},
        {u"status 407"_s, withStatus("407 X", "Proxy-Authenticate: NTLM\r\n")},
        {u"status 503"_s, withStatus("503 X", "Retry-After: 99999\r\n")},
        {u"compressed"_s,
         [](const QByteArray &) {
             return WireAnswer{.bytes = head("200 OK", "Content-Encoding: deflate\r\n") + bomb()};
         }},
        {u"answers nobody asked for"_s,
         [](const QByteArray &body) {
             return WireAnswer{.bytes = HostileServer::sound(body).bytes.repeated(50), .end = End::keep};
         }},
        {u"upgrade"_s,
         withField("Connection: Upgrade\r\nAlt-Svc: h2=\":1\"\r\nStrict-Transport-Security: max-age=9\r\n")},
    };
    return all;
}

} // namespace

QStringList WireFaults::names()
{
    return recipes().keys();
}

WireAnswer WireFaults::answer(const QString &name, const QByteArray &body)
{
    return recipes().value(name)(body);
}
