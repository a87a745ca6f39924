// Random texts made of given pieces, and random places to cut them: the same ones for the same seed.
#pragma once

#include <QList>
#include <QRandomGenerator>
#include <QStringList>

class RandomText
{
public:
    RandomText(quint32 seed, const QStringList &pieces) : m_random(seed), m_pieces(pieces) {}

    // Of up to `most` pieces.
    QString text(int most)
    {
        QString text;
        const int count = m_random.bounded(most + 1);
        for (int i = 0; i < count; ++i)
            text += m_pieces.at(m_random.bounded(m_pieces.size()));
        return text;
    }

    // Places from 0 to `size`, mostly ascending, now and then a step back; the last one is `size`.
    QList<qsizetype> cuts(qsizetype size)
    {
        QList<qsizetype> places;
        for (qsizetype at = 0; at < size;) {
            const bool goesBack = m_random.bounded(8) == 0;
            const auto step = static_cast<qsizetype>(m_random.bounded(1, 9));
            at = goesBack ? std::max(qsizetype{0}, at - step) : std::min(size, at + step);
            places.append(at);
        }
        if (places.isEmpty())
            places.append(size);
        return places;
    }

private:
    QRandomGenerator m_random;
    const QStringList m_pieces;
};
