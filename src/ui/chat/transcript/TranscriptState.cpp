#include "ui/chat/transcript/TranscriptState.h"

#include "ui/chat/transcript/FlowText.h"

#include <algorithm>

QString TranscriptState::selectedText()
{
    if (selection.isEmpty() || selection.message >= layout.count())
        return {};
    const MessageBody &body = layout.body(selection.message);
    const TextFlow &flow = *body.flow(selection.part);
    const TextRange range = selection.range();
    const MessageItem &item = layout.item(selection.message);
    // What does not show cannot be selected by itself, but belongs to the whole.
    if (range == wholeText(flow) && body.isCut(selection.part) && item.keepsText()) {
        const ParsedMessage parsed = item.message().parsed();
        return selection.part == MessagePart::reasoning ? parsed.thinking
               : item.facts().isUsers                   ? item.message().content
                                                        : parsed.answer;
    }
    return ::selectedText(flow, range);
}

void TranscriptState::selectAll()
{
    if (layout.count() == 0)
        return;
    if (selection.message < 0)
        selection = {focused ? focused->message : layout.count() - 1, MessagePart::text, {}, {}};
    const TextRange whole = wholeText(*layout.body(selection.message).flow(selection.part));
    selection.anchor = whole.from;
    selection.cursor = whole.to;
    layout.keepBody(selection.message);
}

void TranscriptState::forgetFrom(int message)
{
    const auto forget = [message](std::optional<TranscriptButton> &button) {
        if (button && button->message >= message)
            button.reset();
    };
    forget(hovered);
    forget(pressed);
    forget(focused);
    if (selection.message >= message) {
        selection = {};
        layout.keepBody(-1);
    }
}

std::optional<TranscriptButton> TranscriptState::neighbour(bool isNext)
{
    if (layout.count() == 0)
        return std::nullopt;
    const int step = isNext ? 1 : -1;
    int message = isNext ? layout.messageAt(0) : layout.count() - 1;
    const auto isAbove = [this](const TranscriptButton &button) { return layout.rect(button).bottom() < 0; };
    std::vector<TranscriptButton> buttons;
    if (focused) {
        message = focused->message;
        buttons = layout.body(message).buttons(message);
        const auto place = std::find(buttons.begin(), buttons.end(), *focused);
        if (isNext)
            buttons.erase(buttons.begin(), place == buttons.end() ? place : place + 1);
        else
            buttons.erase(place, buttons.end());
    } else {
        buttons = layout.body(message).buttons(message);
        if (isNext)
            buttons.erase(buttons.begin(), std::partition_point(buttons.begin(), buttons.end(), isAbove));
    }
    while (buttons.empty()) {
        message += step;
        if (message < 0 || message >= layout.count())
            return std::nullopt;
        buttons = layout.body(message).buttons(message);
    }
    return isNext ? buttons.front() : buttons.back();
}
