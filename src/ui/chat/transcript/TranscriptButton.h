// What the transcript paints to be pressed: buttons, and links within a text.
#pragma once

#include <QRect>
#include <QSize>
#include <QString>

class QPainter;
struct TranscriptStyle;

struct TranscriptButton
{
    enum Kind
    {
        disclosure, // "Thinking"
        copyCode,
        openLink,
        copyAnswer,
        regenerate,
        edit
    };

    int message = 0; // its index
    Kind kind = copyAnswer;
    int block = 0; // of copyCode: which of the message's code blocks
    int row = 0;   // of openLink: the row of the message's text,
    int link = 0;  // and which of the row's links

    bool operator==(const TranscriptButton &) const = default;
};

struct ButtonLook
{
    bool isHovered = false;
    bool isPressed = false;
    bool hasFocus = false;
    bool isOpen = false; // of disclosure
};

// What a button leaves free beside its label, in device-independent pixels.
constexpr int buttonPadding = 6;

QString buttonLabel(TranscriptButton::Kind kind);

// The size of a button, which has no border.
QSize buttonSize(TranscriptButton::Kind kind, const TranscriptStyle &style);

void paintButton(QPainter &painter, const QRect &rect, TranscriptButton::Kind kind, const ButtonLook &look,
                 const TranscriptStyle &style);
