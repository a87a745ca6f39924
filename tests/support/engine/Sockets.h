#pragma once

// The few socket calls that the relay is made of. Descriptors are closed on exec; failures are -1.

#include <array>
#include <string>

namespace demo {

std::array<int, 2> makePipe();
void makeNonBlocking(int descriptor);
void sendWithoutDelay(int socket);
// Closing the socket then resets the connection instead of ending it.
void resetOnClose(int socket);
// Leaves errno alone; -1 is allowed.
void closeDescriptor(int descriptor);

// A listening IPv4 socket; -1 with errno set on failure.
int listenOn(const std::string &host, int port);
int connectToLoopback(int port);
int acceptFrom(int listener, std::string &clientAddress);
int localPort(int socket);

} // namespace demo
