// A server that was already answering when the engine was to be started: another program's, used as it is.
#pragma once

class AdoptedServer
{
public:
    // Main thread.
    explicit AdoptedServer(int port);

    int port() const { return m_port; }
    // Where the system tells. False: this user's, or not known.
    bool isAnotherUsers() const { return m_isAnotherUsers; }

    // To be told each time the server was asked for its version. Whether it has to be taken for gone, having
    // been silent twice in a row.
    bool isGoneAfter(bool answered);

private:
    int m_port;
    bool m_isAnotherUsers;
    int m_silences = 0;
};
