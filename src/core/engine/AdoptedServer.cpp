#include "core/engine/AdoptedServer.h"

#include "platform/machine/Machine.h"

#include <unistd.h>

AdoptedServer::AdoptedServer(int port)
    : m_port(port), m_isAnotherUsers(listeningUser(port).value_or(::getuid()) != ::getuid())
{
}

bool AdoptedServer::isGoneAfter(bool answered)
{
    constexpr int mostSilences = 2;
    m_silences = answered ? 0 : m_silences + 1;
    return m_silences >= mostSilences;
}
