#include "core/engine/RunProcess.h"

#include "core/engine/ChildProcess.h"
#include "platform/async/Completion.h"
#include "platform/async/Launch.h"
#include "platform/error/CancellationError.h"

#include <QList>

#include <memory>

namespace {

QList<std::shared_ptr<ChildProcess>> &shortLived()
{
    static QList<std::shared_ptr<ChildProcess>> children;
    return children;
}

// The end of everything appended. What is dropped is dropped in large pieces, not at every append.
class Tail
{
public:
    explicit Tail(qint64 limit) : m_limit(limit) {}

    void append(const QByteArray &bytes)
    {
        m_bytes += bytes;
        if (m_bytes.size() / 2 > m_limit)
            cut();
    }

    QByteArray take()
    {
        cut();
        return std::move(m_bytes);
    }

private:
    void cut()
    {
        if (m_bytes.size() > m_limit)
            m_bytes = m_bytes.last(m_limit);
    }

    const qint64 m_limit;
    QByteArray m_bytes;
};

} // namespace

Task<ProcessResult> runProcess(QString program, QStringList arguments, std::optional<Environment> environment,
                               qint64 keptOutput)
{
    if (quitToken().stopRequested())
        throw CancellationError();
    const auto output = std::make_shared<Tail>(keptOutput);
    const Completion<int> ended;
    const auto onOutput = [output](const QByteArray &bytes) { output->append(bytes); };
    const auto onEnd = [ended](int status) { ended.complete(status); };
    const ChildProcess::Command command{program, arguments, environment};
    const auto child = ChildProcess::start(command, onOutput, onEnd);
    shortLived().append(child);
    const int status = co_await ended.wait();
    shortLived().removeOne(child);
    co_return ProcessResult{status, QString::fromUtf8(output->take())};
}

void endShortLivedChildren()
{
    for (const auto &child : shortLived())
        child->kill();
}
