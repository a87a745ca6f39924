#include "ui/chat/transcript/MessageBody.h"

#include "ui/chat/transcript/CodeBlockBox.h"
#include "ui/chat/transcript/FlowPainter.h"
#include "ui/chat/transcript/WaitingIndicator.h"

#include <QCoreApplication>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int reasoningInset = 18;
constexpr int leastWidth = 60;
constexpr int gapBelowBubble = 4;
// A bubble is as narrow as its text when that is not longer than this; otherwise as wide as it may be.
constexpr qsizetype longText = 1000;

// Code units. More of a text is not even split into reasoning and answer.
constexpr qsizetype longestText = 1'000'000;

QString tr(const char *text)
{
    return QCoreApplication::translate("Transcript", text);
}

QString noticeText()
{
    return tr(QT_TRANSLATE_NOOP("Transcript", "Only the beginning of this text is shown."));
}

QStringView beginning(const QString &text)
{
    return QStringView(text).first(std::min(text.size(), longestText));
}

} // namespace

MessageBody::MessageBody(const ChatMessage &message, const MessageFacts &facts, const TranscriptStyle &style,
                         int width)
    : m_style(style),
      m_width(width),
      m_facts(facts),
      m_reasoning(TextFlow::Form::plain, style, style.callout),
      m_text(facts.isUsers ? TextFlow::Form::plain : TextFlow::Form::markdown, style, style.body)
{
    setWidth(width);
    update(message);
    if (facts.isUsers)
        setWidth(width); // which depends on the text
}

std::optional<MessageRow> MessageBody::update(const ChatMessage &message)
{
    if (m_facts.isUsers) {
        m_content = message.content;
        m_text.update(m_content, 0);
        layOut();
        return MessageRow{MessagePart::text, 0};
    }
    m_isLeftOut = std::max(message.content.size(), message.thinking.size()) > longestText;
    m_reply.update(beginning(message.content), beginning(message.thinking));
    const int reasoningRow = m_reasoning.update(m_reply.reasoning(), m_reply.unchangedReasoning());
    const int textRow = m_text.update(m_reply.answer(), m_reply.unchangedAnswer());
    m_links.forgetFrom(textRow);
    layOut();
    if (m_facts.isOpen && reasoningRow < m_reasoning.rowCount())
        return MessageRow{MessagePart::reasoning, reasoningRow};
    if (textRow < m_text.rowCount())
        return MessageRow{MessagePart::text, textRow};
    return std::nullopt;
}

void MessageBody::setFacts(const MessageFacts &facts)
{
    m_facts = facts;
    layOut();
}

void MessageBody::setWidth(int width)
{
    m_width = width;
    const int free = m_facts.isUsers ? TranscriptStyle::freeBesideBubble : TranscriptStyle::freeBesideAnswer;
    const int room = std::max(leastWidth, width - free);
    m_reasoning.setWidth(room - reasoningInset);
    m_text.setWidth(room);
    if (m_facts.isUsers) {
        const int limit = room - 2 * TranscriptStyle::bubblePadding;
        m_text.setWidth(m_content.size() > longText ? limit : m_text.naturalWidth(limit));
    }
    layOut();
}

void MessageBody::layOut()
{
    m_boxes.clear();
    if (m_facts.isUsers) {
        const int around = 2 * TranscriptStyle::bubblePadding;
        place(MessagePart::text, 0, {m_text.width() + around, m_text.height() + around});
        placeNotice();
        if (const MessageFooter below = footer(); !below.isEmpty())
            place(MessagePart::footer, gapBelowBubble, below.size());
        return;
    }
    constexpr int gap = TranscriptStyle::partGap;
    const bool hasReasoning = !m_reply.reasoning().isEmpty();
    if (hasReasoning)
        place(MessagePart::disclosure, 0, buttonSize(TranscriptButton::disclosure, m_style));
    if (hasReasoning && m_facts.isOpen)
        place(MessagePart::reasoning, gap / 2, {m_reasoning.width() + reasoningInset, m_reasoning.height()});
    if (!m_reply.answer().isEmpty())
        place(MessagePart::text, gap, {m_text.width(), m_text.height()});
    placeNotice();
    if (m_reply.answer().isEmpty() && m_facts.isArriving())
        place(MessagePart::waiting, gap, {m_width, WaitingIndicator::height(m_style)});
    if (!m_facts.isArriving())
        place(MessagePart::footer, gap, footer().size());
}

bool MessageBody::isCut(MessagePart part) const
{
    return m_isLeftOut || flow(part)->rows().isCut();
}

void MessageBody::placeNotice()
{
    const bool isReasoningCut = box(MessagePart::reasoning) && isCut(MessagePart::reasoning);
    if (!isReasoningCut && !isCut(MessagePart::text))
        return;
    const int width = QFontMetrics(m_style.caption).horizontalAdvance(noticeText());
    place(MessagePart::notice, TranscriptStyle::partGap, {std::min(width, m_width), m_style.captionHeight});
}

void MessageBody::place(MessagePart part, int gap, QSize size)
{
    const int top = m_boxes.empty() ? 0 : m_boxes.back().rect.bottom() + 1 + gap;
    int left = m_facts.isUsers ? m_width - size.width() : 0;
    // Not the button's surroundings, but its label stands at the edge.
    if (part == MessagePart::disclosure)
        left -= buttonPadding;
    m_boxes.push_back({part, QRect(QPoint(left, top), size)});
}

const MessageBody::Box *MessageBody::box(MessagePart part) const
{
    const auto found =
        std::find_if(m_boxes.begin(), m_boxes.end(), [part](const Box &box) { return box.part == part; });
    return found == m_boxes.end() ? nullptr : &*found;
}

QRect MessageBody::partRect(MessagePart part) const
{
    const Box *const found = box(part);
    return found ? found->rect : QRect();
}

int MessageBody::height() const
{
    return m_boxes.empty() ? 0 : m_boxes.back().rect.bottom() + 1;
}

TextFlow *MessageBody::flow(MessagePart part)
{
    if (part == MessagePart::reasoning)
        return &m_reasoning;
    return part == MessagePart::text ? &m_text : nullptr;
}

const TextFlow *MessageBody::flow(MessagePart part) const
{
    return const_cast<MessageBody *>(this)->flow(part);
}

QPoint MessageBody::flowOrigin(MessagePart part) const
{
    const Box *const found = box(part);
    if (!found)
        return {};
    if (part == MessagePart::reasoning)
        return found->rect.topLeft() + QPoint(reasoningInset, 0);
    const int padding = m_facts.isUsers ? TranscriptStyle::bubblePadding : 0;
    return found->rect.topLeft() + QPoint(padding, padding);
}

bool MessageBody::measure(int top, int bottom)
{
    bool changed = false;
    for (const MessagePart part : {MessagePart::reasoning, MessagePart::text}) {
        if (!box(part))
            continue;
        const int y = flowOrigin(part).y();
        if (flow(part)->measure(top - y, bottom - y)) {
            layOut();
            changed = true;
        }
    }
    return changed;
}

void MessageBody::release(int top, int bottom)
{
    for (const MessagePart part : {MessagePart::reasoning, MessagePart::text}) {
        const int y = flowOrigin(part).y();
        flow(part)->release(top - y, bottom - y);
    }
}

void MessageBody::forEachRow(int top, int bottom, const std::function<void(MessageRow, QRect)> &visit) const
{
    for (const Box &box : m_boxes) {
        if (box.rect.bottom() < top || box.rect.top() >= bottom)
            continue;
        const TextFlow *const rows = flow(box.part);
        if (!rows || rows->rowCount() == 0) {
            visit({box.part, 0}, box.rect);
            continue;
        }
        const int y = flowOrigin(box.part).y();
        for (int row = rows->rowAt(top - y); row < rows->rowCount(); ++row) {
            const QRect place = *rect(MessageRow{box.part, row});
            if (place.top() >= bottom)
                break;
            visit({box.part, row}, place);
        }
    }
}

std::optional<QRect> MessageBody::rect(MessageRow row) const
{
    const Box *const found = box(row.part);
    const TextFlow *const rows = flow(row.part);
    if (!found || (rows && row.row >= rows->rowCount()))
        return std::nullopt;
    QRect place = found->rect;
    if (!rows)
        return place;
    // The first and the last row take the bubble's padding.
    const QRect inFlow = rows->rowRect(row.row).translated(flowOrigin(row.part));
    if (row.row > 0)
        place.setTop(inFlow.top());
    if (row.row < rows->rowCount() - 1)
        place.setBottom(inFlow.bottom());
    return place;
}

QString MessageBody::waitingText() const
{
    if (!m_reply.reasoning().isEmpty())
        return tr(QT_TRANSLATE_NOOP("Transcript", "Thinking…"));
    return tr(m_facts.loadsModel ? QT_TRANSLATE_NOOP("Transcript", "Loading the model into memory…")
                                 : QT_TRANSLATE_NOOP("Transcript", "Waiting for the model…"));
}

QString MessageBody::status() const
{
    return box(MessagePart::waiting) ? waitingText() : footer().speed();
}

std::vector<TranscriptButton> MessageBody::buttons(int index)
{
    std::vector<TranscriptButton> buttons;
    if (box(MessagePart::disclosure))
        buttons.push_back({index, TranscriptButton::disclosure, 0});
    if (box(MessagePart::text) && !m_facts.isUsers) {
        int block = 0;
        const auto addBlocksAbove = [&](int row) {
            for (; block < m_text.rows().blockCount() && m_text.rows().block(block).header < row; ++block)
                buttons.push_back({index, TranscriptButton::copyCode, block});
        };
        for (const FlowLink &link : m_links.in(m_text)) {
            addBlocksAbove(link.row);
            buttons.push_back({index, TranscriptButton::openLink, 0, link.row, link.index});
        }
        addBlocksAbove(m_text.rowCount());
    }
    const MessageFooter below = footer();
    for (const TranscriptButton::Kind kind : below.buttons())
        buttons.push_back({index, kind, 0});
    return buttons;
}

const FlowLink *MessageBody::link(const TranscriptButton &button)
{
    if (button.kind != TranscriptButton::openLink)
        return nullptr;
    const std::vector<FlowLink> &links = m_links.in(m_text);
    const auto isIt = [&button](const FlowLink &link) {
        return link.row == button.row && link.index == button.link;
    };
    const auto found = std::find_if(links.begin(), links.end(), isIt);
    return found == links.end() ? nullptr : &*found;
}

QRect MessageBody::linkRect(const TranscriptButton &link) const
{
    QRect whole;
    for (const QRect &rect : const_cast<TextFlow &>(m_text).linkRects(link.row, link.link))
        whole |= rect;
    return whole.isEmpty() ? whole : whole.translated(flowOrigin(MessagePart::text));
}

QRect MessageBody::rect(const TranscriptButton &button) const
{
    switch (button.kind) {
    case TranscriptButton::disclosure:
        return box(MessagePart::disclosure) ? box(MessagePart::disclosure)->rect : QRect();
    case TranscriptButton::copyCode:
        if (!box(MessagePart::text) || button.block >= m_text.rows().blockCount())
            return {};
        return CodeBlockBox(const_cast<TextFlow &>(m_text), button.block)
            .copyButton()
            .translated(flowOrigin(MessagePart::text));
    case TranscriptButton::openLink:
        return linkRect(button);
    case TranscriptButton::copyAnswer:
    case TranscriptButton::regenerate:
    case TranscriptButton::edit:
        break;
    }
    const QRect place = footer().rect(button.kind);
    return place.isEmpty() ? place : place.translated(box(MessagePart::footer)->rect.topLeft());
}

std::optional<TranscriptButton> MessageBody::buttonAt(QPoint point, int index) const
{
    std::vector<TranscriptButton> candidates{{index, TranscriptButton::disclosure, 0}};
    const MessageFooter below = footer();
    for (const TranscriptButton::Kind kind : below.buttons())
        candidates.push_back({index, kind, 0});
    const int y = point.y() - flowOrigin(MessagePart::text).y();
    if (partRect(MessagePart::text).contains(point) && y >= 0 && y < m_text.height()) {
        const int block = m_text.rows().row(m_text.rowAt(y)).block;
        if (block >= 0)
            candidates.push_back({index, TranscriptButton::copyCode, block});
    }
    for (const TranscriptButton &candidate : candidates) {
        if (rect(candidate).contains(point))
            return candidate;
    }
    return std::nullopt;
}

void MessageBody::paint(const TranscriptPaint &paint, QPoint origin, int index)
{
    for (const Box &box : m_boxes) {
        const QRect around = box.rect.translated(origin).adjusted(-buttonPadding, 0, buttonPadding, 0);
        if (around.intersects(paint.clip))
            paintPart(paint, box, origin, index);
    }
}

void MessageBody::paintPart(const TranscriptPaint &paint, const Box &box, QPoint origin, int index)
{
    const QRect rect = box.rect.translated(origin);
    switch (box.part) {
    case MessagePart::disclosure: {
        ButtonLook look = paint.look({index, TranscriptButton::disclosure, 0});
        look.isOpen = m_facts.isOpen;
        return paintButton(paint.painter, rect, TranscriptButton::disclosure, look, m_style);
    }
    case MessagePart::reasoning:
    case MessagePart::text:
        return paintFlow(paint, origin, index, box.part);
    case MessagePart::notice:
        paint.painter.setFont(m_style.caption);
        paint.painter.setPen(m_style.secondary);
        return paint.painter.drawText(rect, Qt::AlignVCenter | Qt::TextSingleLine, noticeText());
    case MessagePart::waiting:
        return WaitingIndicator::paint(paint.painter, rect, waitingText(), paint.spinnerAngle, m_style);
    case MessagePart::footer:
        return footer().paint(paint, rect.topLeft(), index);
    }
}

void MessageBody::paintFlow(const TranscriptPaint &paint, QPoint origin, int index, MessagePart part)
{
    QPainter &painter = paint.painter;
    if (m_facts.isUsers) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_style.bubble);
        painter.drawRoundedRect(box(part)->rect.translated(origin), TranscriptStyle::bubbleRadius,
                                TranscriptStyle::bubbleRadius);
        painter.restore();
    }
    painter.setPen(part == MessagePart::reasoning ? m_style.secondary : m_style.text);
    FlowPainter(paint, *flow(part), origin + flowOrigin(part), index, part).paint();
}
