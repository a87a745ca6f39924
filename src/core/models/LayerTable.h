// The layers that one pull has reported so far, and their sums.
#pragma once

#include <QHash>
#include <QString>
#include <QtGlobal>

struct PullProgress;

class LayerTable
{
public:
    // No model comes near these; beyond them layers are passed over, and bytes of a layer do not count.
    static constexpr qsizetype mostLayers = qsizetype(1) << 16;
    static constexpr qint64 mostBytes = (qint64(1) << 46) - 1;

    // A later report on a layer replaces the earlier one; a report without a layer or without its size
    // changes nothing.
    void update(const PullProgress &progress);

    // Bytes of all layers.
    qint64 total() const { return m_total; }
    // Bytes of all layers that are there.
    qint64 completed() const { return m_completed; }
    // Those of them that have come since each layer's first report: what was there before does not count.
    qint64 received() const { return m_completed - m_before; }

private:
    struct Layer
    {
        qint64 total = 0;
        qint64 done = 0;
    };

    QHash<QString, Layer> m_layers;
    qint64 m_total = 0;
    qint64 m_completed = 0;
    qint64 m_before = 0;
};
