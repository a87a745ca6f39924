// The forms in which text from outside (the engine, a model, a file, the clipboard) is shown. Laying text out
// takes a time that depends on more than its length, and some characters rearrange their neighbours: what has
// gone through here can do neither.
#pragma once

#include <QString>

// Of a place of one line, also one to write in; code units.
constexpr int longestLine = 1000;

// `text` for a place of one line: at most `longest` code units and an ellipsis where it was cut, with blanks
// for line breaks and control characters.
QString shownLine(const QString &text, qsizetype longest = longestLine);

// `text` for a place of several lines: at most `longest` code units and `mostLines` lines, no more than it
// has turned its direction 200 times, and an ellipsis where it was cut.
QString shownLines(const QString &text, qsizetype longest = longestLine, int mostLines = 12);

// `text` as a part of a sentence of ours, whose words it leaves in their order whichever way it reads itself.
QString isolated(const QString &text);

// `text`, of the same length, with a replacement character for each code unit of what is piled up on one
// character beyond any script's need: combining marks, joiners, invisible characters.
QString withoutPiles(const QString &text);
