// Blocks every signal for the thread it is made on, until its own end; threads and processes that are started
// meanwhile inherit that.
#pragma once

#include <csignal>

class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

private:
    sigset_t m_before;
};
