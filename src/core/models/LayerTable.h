// The layers that one pull has reported so far, and their sums.
#pragma once

#include <QHash>
#include <QString>
#include <QtGlobal>

struct PullProgress;

class LayerTable
{
public:
    // A later report on a layer replaces the earlier one; a report without a layer or without its size
    // changes nothing.
    void update(const PullProgress &progress);

    // Bytes of all layers; sums that do not fit stay at the largest number, or the smallest.
    qint64 total() const { return m_total; }
    // Bytes received of all layers.
    qint64 completed() const { return m_completed; }

private:
    struct Layer
    {
        qint64 total = 0;
        qint64 done = 0;

        bool operator==(const Layer &) const = default;
    };

    QHash<QString, Layer> m_layers;
    qint64 m_total = 0;
    qint64 m_completed = 0;
};
