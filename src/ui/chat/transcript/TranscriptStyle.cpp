#include "ui/chat/transcript/TranscriptStyle.h"

#include "ui/widgets/TextStyle.h"
#include "ui/widgets/Tint.h"

#include <QFontMetrics>
#include <QTextLayout>
#include <QtMath>

namespace {

QFont bold(QFont font)
{
    font.setBold(true);
    return font;
}

double columnWidth(const QFont &font)
{
    constexpr int columns = 64;
    QTextLayout layout(QString(columns, u'0'), font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    return line.naturalTextWidth() / columns;
}

} // namespace

TranscriptStyle::TranscriptStyle(const QPalette &palette, double scale)
    : body(styledFont(TextStyle::body, scale)),
      title2(bold(styledFont(TextStyle::title2, scale))),
      title3(bold(styledFont(TextStyle::title3, scale))),
      headline(styledFont(TextStyle::headline, scale)),
      callout(styledFont(TextStyle::callout, scale)),
      caption(styledFont(TextStyle::caption, scale)),
      code(monospacedFont(TextStyle::callout, scale)),
      codeInline(monospacedFont(TextStyle::body, scale)),
      text(tintColor(Tint::text, palette)),
      secondary(tintColor(Tint::secondary, palette)),
      link(palette.color(QPalette::Link)),
      bubble(tintColor(Tint::accent, palette, 0.2)),
      focus(tintColor(Tint::accentInk, palette)),
      bodyLineHeight(QFontMetrics(body).lineSpacing()),
      bodyCharacterWidth(QFontMetricsF(body).averageCharWidth()),
      codeLineHeight(QFontMetrics(code).lineSpacing()),
      codeColumnWidth(columnWidth(code)),
      captionHeight(QFontMetrics(caption).lineSpacing()),
      calloutHeight(QFontMetrics(callout).lineSpacing())
{
}

const QFont &TranscriptStyle::font(MarkdownLine::Style style) const
{
    switch (style) {
    case MarkdownLine::Style::title2:
        return title2;
    case MarkdownLine::Style::title3:
        return title3;
    case MarkdownLine::Style::headline:
        return headline;
    case MarkdownLine::Style::blank:
    case MarkdownLine::Style::bullet:
    case MarkdownLine::Style::body:
        break;
    }
    return body;
}

QColor TranscriptStyle::faint(double opacity) const
{
    QColor color = secondary;
    color.setAlphaF(color.alphaF() * static_cast<float>(opacity));
    return color;
}
