// One line of code, which is never broken. Of a long one only the segments in sight are laid out.
#pragma once

#include "ui/chat/transcript/RowLayout.h"
#include "ui/chat/transcript/TranscriptStyle.h"

#include <QStringView>
#include <QTextLayout>

#include <map>
#include <memory>

class CodeLineLayout : public RowLayout
{
public:
    // `style` must outlive the layout.
    CodeLineLayout(QStringView line, const TranscriptStyle &style);

    // The column behind `text` when it begins at `start`, in a fixed-width font; at least what it takes to
    // show it.
    static int columns(QStringView text, int start = 0);

    int height() const override { return m_style.codeLineHeight; }
    void paint(QPainter &painter, QPoint origin, const QRect &clip, const Selected &selected) override;
    qsizetype offsetAt(QPoint point) override;

private:
    struct Segment
    {
        qsizetype start;
        qsizetype length;
        int x;
    };

    void split();
    size_t segmentAt(int x) const;
    QTextLayout &layoutOf(size_t segment);

    const TranscriptStyle &m_style;
    const QString m_line;
    std::vector<Segment> m_segments;
    std::map<size_t, std::unique_ptr<QTextLayout>> m_layouts; // of the segments in sight
};
