#include "Sockets.h"

#include <cerrno>
#include <cstdint>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace demo {

namespace {

void closeOnExec(int descriptor)
{
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

sockaddr_in ipv4Address(const std::string &host, int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    if (::inet_pton(AF_INET, host.c_str(), &address.sin_addr) != 1) {
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    }
    return address;
}

int failed(int descriptor)
{
    closeDescriptor(descriptor);
    return -1;
}

} // namespace

std::array<int, 2> makePipe()
{
    std::array<int, 2> ends{-1, -1};
    if (::pipe(ends.data()) == 0) {
        for (const int end : ends) {
            closeOnExec(end);
            makeNonBlocking(end);
        }
    }
    return ends;
}

void makeNonBlocking(int descriptor)
{
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

void sendWithoutDelay(int socket)
{
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void resetOnClose(int socket)
{
    const linger immediately{1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &immediately, sizeof immediately);
}

void closeDescriptor(int descriptor)
{
    if (descriptor >= 0) {
        const int problem = errno;
        ::close(descriptor);
        errno = problem;
    }
}

int listenOn(const std::string &host, int port)
{
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    if (listener < 0) {
        return -1;
    }
    closeOnExec(listener);
    // Connections that an ended engine closed would keep the port busy for a minute otherwise. Sharing the
    // port with a second listener (SO_REUSEPORT) must stay impossible.
    const int on = 1;
    ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const sockaddr_in address = ipv4Address(host, port);
    if (::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::listen(listener, 512) != 0) {
        return failed(listener);
    }
    makeNonBlocking(listener);
    return listener;
}

int connectToLoopback(int port)
{
    const int connected = ::socket(AF_INET, SOCK_STREAM, 0);
    if (connected < 0) {
        return -1;
    }
    closeOnExec(connected);
    const sockaddr_in address = ipv4Address("127.0.0.1", port);
    if (::connect(connected, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        return failed(connected);
    }
    return connected;
}

int acceptFrom(int listener, std::string &clientAddress)
{
    sockaddr_in address{};
    socklen_t length = sizeof address;
    const int client = ::accept(listener, reinterpret_cast<sockaddr *>(&address), &length);
    if (client < 0) {
        return -1;
    }
    closeOnExec(client);
    std::array<char, INET_ADDRSTRLEN> text{};
    if (::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size()) != nullptr) {
        clientAddress = text.data();
    }
    return client;
}

int localPort(int socket)
{
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
        return -1;
    }
    return ntohs(address.sin_port);
}

} // namespace demo
