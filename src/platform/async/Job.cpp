#include "platform/async/Job.h"

Job::Job(const std::function<Task<>(StopToken)> &start) : m_stop(std::make_shared<StopSource>(quitToken()))
{
    launch([&] { return start(m_stop->token()); });
}

void Job::requestStop() const
{
    if (m_stop)
        m_stop->requestStop();
}
