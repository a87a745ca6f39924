#include "ui/chat/transcript/TranscriptLayout.h"

#include <algorithm>

namespace {

constexpr int margin = TranscriptStyle::margin;
constexpr int gap = TranscriptStyle::messageGap;
// What follows the last message, and is in sight when the end is.
constexpr int marker = 1;
constexpr size_t keptBodies = 64;
// Nothing in a message stands above it.
constexpr MessageRow firstRow{MessagePart::disclosure, 0};

bool arrives(const ChatMessage &message, bool isLast, bool isGenerating)
{
    return isLast && isGenerating && message.role != QLatin1StringView("user");
}

} // namespace

TranscriptLayout::Change TranscriptLayout::show(const Conversation &conversation, bool isGenerating)
{
    Change change;
    const int messages = static_cast<int>(conversation.messages.size());
    change.isOtherConversation = conversation.id != m_conversation;
    if (change.isOtherConversation) {
        m_conversation = conversation.id;
        m_items.clear();
        m_heights.truncate(0);
        m_bodies.clear();
        m_place = {};
        change.isAny = true;
    }
    const bool onlyLast = isGenerating && m_isGenerating && count() == messages && messages > 0;
    int first = onlyLast ? messages - 1 : 0;
    const int common = std::min(count(), messages);
    while (first < common && m_items[static_cast<size_t>(first)].isSame(conversation.messages.at(first)))
        ++first;
    if (first < count() || first < messages) {
        change.isAny = true;
        if (first < count())
            change.firstReplaced = first;
        replaceFrom(conversation, first);
    }
    m_isGenerating = isGenerating;
    showFacts(isGenerating, change);
    takeChanges(conversation, onlyLast ? messages - 1 : 0, isGenerating, change);
    const qsizetype lastSize = m_items.empty() ? 0 : m_items.back().size();
    change.hasNewText = change.isOtherConversation || lastSize != m_lastSize;
    m_lastSize = lastSize;
    return change;
}

void TranscriptLayout::replaceFrom(const Conversation &conversation, int first)
{
    m_items.erase(m_items.begin() + first, m_items.end());
    m_heights.truncate(first);
    std::erase_if(m_bodies, [first](int message) { return message >= first; });
    const qsizetype messages = conversation.messages.size();
    m_items.reserve(static_cast<size_t>(messages));
    for (qsizetype i = first; i < messages; ++i) {
        m_items.emplace_back(conversation.messages.at(i));
        m_heights.append(m_items.back().height(m_style, columnWidth()) + gap);
    }
}

bool TranscriptLayout::setLoadsModel(bool loads)
{
    m_loadsModel = loads;
    Change change;
    showFacts(m_isGenerating, change);
    return change.isAny;
}

// Only the last message looks different for being the last, and while a reply is generated.
void TranscriptLayout::showFacts(bool isGenerating, Change &change)
{
    for (int i = std::clamp(m_last, 0, std::max(0, count() - 1)); i < count(); ++i) {
        MessageItem &item = m_items[static_cast<size_t>(i)];
        MessageFacts facts = item.facts();
        facts.isLast = i == count() - 1;
        facts.isGenerating = facts.isLast && isGenerating;
        facts.loadsModel = facts.isGenerating && m_loadsModel;
        if (item.setFacts(facts)) {
            change.isAny = true;
            updateHeight(i);
        }
    }
    m_last = count() - 1;
}

void TranscriptLayout::takeChanges(const Conversation &conversation, int first, bool isGenerating,
                                   Change &change)
{
    for (int i = first; i < count(); ++i) {
        MessageItem &item = m_items[static_cast<size_t>(i)];
        const ChatMessage &message = conversation.messages.at(i);
        const bool isArriving = arrives(message, i == count() - 1, isGenerating);
        if (item.shows(message) && item.keepsText() != isArriving)
            continue;
        const bool hadBody = item.body();
        const std::optional<MessageRow> row = item.take(message, isArriving, m_style, columnWidth());
        if (!hadBody && item.body())
            m_bodies.push_back(i);
        if (hadBody && !item.body())
            std::erase(m_bodies, i);
        updateHeight(i);
        change.isAny = true;
        if (row && !change.changed)
            change.changed = RowAddress{i, *row};
    }
}

void TranscriptLayout::updateHeight(int index)
{
    const int height = item(index).height(m_style, columnWidth()) + gap;
    if (height != m_heights.height(index))
        m_heights.set(index, height);
}

void TranscriptLayout::setViewport(QSize size)
{
    const bool isOtherWidth = size.width() != m_viewport.width();
    m_viewport = size;
    if (isOtherWidth)
        restyle();
}

void TranscriptLayout::restyle()
{
    holdTop();
    for (int i = 0; i < count(); ++i) {
        MessageItem &item = m_items[static_cast<size_t>(i)];
        if (item.body())
            item.body()->setWidth(columnWidth());
        updateHeight(i);
    }
}

void TranscriptLayout::setOpen(int message, bool isOpen)
{
    MessageItem &item = m_items[static_cast<size_t>(message)];
    MessageFacts facts = item.facts();
    facts.isOpen = isOpen;
    if (item.setFacts(facts))
        updateHeight(message);
}

int TranscriptLayout::columnWidth() const
{
    return std::max(1, m_viewport.width() - 2 * margin);
}

int TranscriptLayout::contentHeight() const
{
    return margin + m_heights.total() + marker + margin;
}

int TranscriptLayout::end() const
{
    return std::max(0, contentHeight() - m_viewport.height());
}

int TranscriptLayout::messageTop(int index) const
{
    return margin + m_heights.top(index);
}

MessageBody &TranscriptLayout::body(int index)
{
    MessageItem &item = m_items[static_cast<size_t>(index)];
    if (!item.body()) {
        item.ensureBody(m_style, columnWidth());
        m_bodies.push_back(index);
    }
    return *item.body();
}

int TranscriptLayout::messageAt(int y) const
{
    return m_heights.at(y + m_top - margin);
}

QPoint TranscriptLayout::messageOrigin(int index) const
{
    return {margin, messageTop(index) - m_top};
}

QRect TranscriptLayout::messageRect(int index) const
{
    return {messageOrigin(index), QSize(columnWidth(), m_heights.height(index) - gap)};
}

std::optional<QRect> TranscriptLayout::rect(const RowAddress &address) const
{
    if (address.message >= count() || !item(address.message).body())
        return std::nullopt;
    const std::optional<QRect> place = item(address.message).body()->rect(address.row);
    return place ? std::optional(place->translated(messageOrigin(address.message))) : std::nullopt;
}

QRect TranscriptLayout::rect(const TranscriptButton &button) const
{
    if (button.message >= count() || !item(button.message).body())
        return {};
    const QRect place = item(button.message).body()->rect(button);
    return place.isEmpty() ? place : place.translated(messageOrigin(button.message));
}

// Where the viewport has moved only a little, what was in sight leads; where it has jumped, the guesses do.
void TranscriptLayout::moveTo(int top)
{
    const int wanted = std::clamp(top, 0, end());
    const int distance = wanted - m_top;
    const bool isJump = std::abs(distance) > 2 * m_viewport.height();
    if (wanted == end() && distance >= 0) {
        moveToEnd();
    } else if (isJump || m_visible.empty()) {
        if (count() == 0)
            return;
        const int message = m_heights.at(wanted - margin);
        m_place = {false, {message, firstRow}, messageTop(message) - wanted};
    } else {
        holdOn(m_visible.front().address);
        m_place.y -= distance;
    }
}

void TranscriptLayout::holdOn(const RowAddress &address)
{
    if (const std::optional<QRect> place = rect(address))
        m_place = {false, address, place->top()};
}

void TranscriptLayout::holdTop()
{
    if (m_place.isEnd || m_visible.empty())
        return;
    const VisibleRow &row = m_visible.front();
    const double hidden =
        std::max(0.0, -static_cast<double>(row.rect.top()) / std::max(1, row.rect.height()));
    m_place = {false, row.address, std::max(0, row.rect.top()), hidden};
}

int TranscriptLayout::topAsPlaced() const
{
    if (m_place.isEnd || m_place.anchor.message >= count())
        return end();
    // Of a row that is there no more, the message is left.
    const std::optional<QRect> place = rect(m_place.anchor);
    int y = messageTop(m_place.anchor.message);
    if (place) {
        const int hidden = qRound(m_place.hidden * place->height());
        y = place->top() + m_top + std::min(hidden, place->height() - 1);
    }
    return std::clamp(y - m_place.y, 0, end());
}

void TranscriptLayout::settle()
{
    if (m_viewport.isEmpty())
        return;
    int top = topAsPlaced();
    while (measure(top))
        top = topAsPlaced();
    m_top = top;
    collectVisible();
    if (!m_place.isEnd && !m_visible.empty())
        holdOn(m_visible.front().address);
    releaseBodies();
}

bool TranscriptLayout::measure(int top)
{
    if (count() == 0)
        return false;
    const int bottom = top + m_viewport.height();
    bool changed = false;
    int index = m_heights.at(top - margin);
    for (int y = messageTop(index); index < count() && y < bottom; ++index) {
        const int before = m_heights.height(index);
        MessageBody &shown = body(index);
        changed |= shown.measure(top - y, bottom - y);
        updateHeight(index);
        changed |= m_heights.height(index) != before;
        y += m_heights.height(index);
    }
    return changed;
}

void TranscriptLayout::collectVisible()
{
    m_visible.clear();
    const int bottom = m_viewport.height();
    for (int index = count() == 0 ? 0 : messageAt(0); index < count(); ++index) {
        const QPoint origin = messageOrigin(index);
        if (origin.y() >= bottom)
            break;
        body(index).forEachRow(-origin.y(), bottom - origin.y(), [&](MessageRow row, const QRect &rect) {
            const QRect place = rect.translated(origin);
            if (place.bottom() >= 0)
                m_visible.push_back({{index, row}, place});
        });
    }
}

void TranscriptLayout::releaseBodies()
{
    for (const int index : m_bodies) {
        const int y = messageOrigin(index).y();
        body(index).release(-y, m_viewport.height() - y);
    }
    if (m_bodies.size() <= keptBodies)
        return;
    std::erase_if(m_bodies, [this](int index) {
        if (index == m_kept || messageRect(index).intersects({QPoint(), m_viewport}))
            return false;
        m_items[static_cast<size_t>(index)].releaseBody();
        return !item(index).body();
    });
}
