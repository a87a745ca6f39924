// One line of an answer while the engine generates it.
#pragma once

#include <QString>

struct ChatChunk
{
    QString content = {};    // the next piece of the answer
    QString thinking = {};   // the next piece of the reasoning
    bool done = false;       // the engine's last line
    qint64 evalCount = 0;    // tokens generated; on the last line
    qint64 evalDuration = 0; // nanoseconds spent generating; on the last line

    bool operator==(const ChatChunk &) const = default;
};
