#include "core/models/LayerTable.h"

#include "core/api/PullProgress.h"

#include <algorithm>

namespace {

constexpr qsizetype longestDigest = 256; // that of SHA-256 has 71 characters

} // namespace

void LayerTable::update(const PullProgress &progress)
{
    if (!progress.digest || progress.digest->size() > longestDigest || progress.total <= 0)
        return;
    const Layer reported{std::min(progress.total, mostBytes),
                         std::clamp(progress.completed, -mostBytes, mostBytes)};
    auto layer = m_layers.find(*progress.digest);
    if (layer == m_layers.end()) {
        if (m_layers.size() == mostLayers)
            return;
        layer = m_layers.insert(*progress.digest, {});
        m_before += reported.done;
    }
    m_total += reported.total - layer->total;
    m_completed += reported.done - layer->done;
    *layer = reported;
}
