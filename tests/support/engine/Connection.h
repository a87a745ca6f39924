#pragma once

// One client's connection, relayed byte for byte between its socket and the HTTP server behind it. It tells
// the request's handler when the client has gone, and misbehaves on the wire when the handler asks for it.

#include <array>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>

namespace demo {

class Connection
{
public:
    enum class Shape
    {
        plain,
        byteByByte,
        cutAnywhere,
    };
    enum class Ending
    {
        close,
        // The client sees a connection reset.
        reset,
        // A chunk border that is none, then the end.
        badChunk,
    };

    // Takes both sockets over.
    Connection(int clientSocket, int serverSocket, std::string clientAddress);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // Relays until both sides have ended.
    void run();

    // What follows may be called from any thread.
    const std::string &clientAddress() const { return m_clientAddress; }
    // A new request on the same connection starts without the faults of the one before.
    void beginRequest();
    void setShape(Shape shape, std::chrono::microseconds pause);
    // How the client's side ends once the server has closed its own and everything before was sent.
    void endWith(Ending ending);
    // At once, without what the server still has to say; `lastWords` go out first.
    void cut(Ending ending, std::string lastWords = {});
    bool clientGone() const;
    // False, without waiting longer, as soon as the client has gone.
    bool waitFor(std::chrono::nanoseconds duration) const;
    bool waitUntil(std::chrono::steady_clock::time_point time) const;

private:
    struct Buffer
    {
        std::array<char, 65536> bytes;
        std::size_t begin = 0;
        std::size_t end = 0;

        bool isEmpty() const { return begin == end; }
        std::size_t size() const { return end - begin; }
    };

    enum class Progress
    {
        moved,
        ended,
        failed,
    };

    struct Orders
    {
        Shape shape = Shape::plain;
        std::chrono::microseconds pause{0};
        Ending ending = Ending::close;
        bool cutNow = false;
        std::string lastWords;
    };

    Progress fill(int socket, Buffer &buffer);
    Progress drain(int socket, Buffer &buffer, std::size_t most);
    Progress sendToClient(const Orders &orders);
    Orders orders() const;
    int pollTimeout(const Orders &orders) const;
    bool turn();
    void finish(const Orders &orders, bool clientEnded);
    void wake();
    void letServerFinish();

    int m_client;
    int m_server;
    std::array<int, 2> m_wakePipe{-1, -1};
    const std::string m_clientAddress;
    Buffer m_toServer;
    Buffer m_toClient;
    bool m_serverEnded = false;
    unsigned m_pieceSeed = 1;
    std::chrono::steady_clock::time_point m_nextSend;

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    Orders m_orders;
    bool m_gone = false;
};

} // namespace demo
