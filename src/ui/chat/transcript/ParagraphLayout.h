// A paragraph of styled text, broken into lines as wide as a column. A long one is laid out in pieces that
// begin where a line begins, so that a paragraph that grows is laid out again at its end only, and so that
// only the pieces in sight are kept.
#pragma once

#include "ui/chat/transcript/RowLayout.h"
#include "ui/chat/transcript/StyledText.h"

#include <QColor>
#include <QFont>
#include <QTextLayout>

#include <memory>
#include <vector>

class ParagraphLayout : public RowLayout
{
public:
    struct Style
    {
        QFont font;
        QFont codeFont; // of code spans
        QColor link;

        bool operator==(const Style &) const = default;
    };

    // `width` in device-independent pixels.
    ParagraphLayout(const Style &style, int width) : m_style(style), m_width(width) {}

    // Lays out what differs from the text before.
    void setText(StyledText text);

    const Style &style() const { return m_style; }
    int width() const { return m_width; }
    // The width of the longest line.
    int naturalWidth();
    bool isRightToLeft() const { return m_isRightToLeft; }
    // Of the first line, below the layout's top.
    double baseline();

    const StyledText &text() const { return m_text; }
    // Which of the text's links is at `point`, which is relative to the layout's origin; negative when none
    // is.
    int linkAt(QPoint point);
    // What the link takes of each line, relative to the layout's origin; nothing when there is no such link.
    std::vector<QRect> linkRects(int link);

    int height() const override;
    void paint(QPainter &painter, QPoint origin, const QRect &clip, const Selected &selected) override;
    qsizetype offsetAt(QPoint point) override;

    // Whether a link may be opened when clicked.
    static bool isOpenable(const QString &target);

private:
    struct Piece
    {
        qsizetype start;
        qsizetype length;
        int top;
        int height;
        std::unique_ptr<QTextLayout> layout; // made when needed
    };

    qsizetype firstDifference(const StyledText &text) const;
    void layOut();
    Piece makePiece(qsizetype start, int top) const;
    std::unique_ptr<QTextLayout> layOut(qsizetype start, qsizetype length) const;
    QTextLayout &layoutOf(Piece &piece) const;
    Piece &pieceAt(int y);
    QList<QTextLayout::FormatRange> formats(qsizetype start, qsizetype length) const;
    QTextCharFormat format(const StyledText::Run &run) const;

    const Style m_style;
    const int m_width;
    StyledText m_text;
    bool m_isRightToLeft = false;
    std::vector<Piece> m_pieces;
};
