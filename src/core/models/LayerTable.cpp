#include "core/models/LayerTable.h"

#include "core/api/PullProgress.h"

#include <limits>

namespace {

qint64 saturatedSum(qint64 a, qint64 b)
{
    using Limits = std::numeric_limits<qint64>;
    qint64 sum = 0;
    if (qAddOverflow(a, b, &sum))
        return a < 0 ? Limits::min() : Limits::max();
    return sum;
}

} // namespace

void LayerTable::update(const PullProgress &progress)
{
    if (!progress.digest || progress.total <= 0)
        return;
    Layer &layer = m_layers[*progress.digest];
    const Layer reported{progress.total, progress.completed};
    if (layer == reported)
        return;
    layer = reported;
    m_total = 0;
    m_completed = 0;
    for (const Layer &each : std::as_const(m_layers)) {
        m_total = saturatedSum(m_total, each.total);
        m_completed = saturatedSum(m_completed, each.done);
    }
}
