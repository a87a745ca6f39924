// The text of a flow: what a selection holds, and what a double click selects.
#pragma once

#include "ui/chat/transcript/TextPosition.h"

#include <QString>

class TextFlow;

// Everything there is.
TextRange wholeText(const TextFlow &flow);
// The word at `position`, or what else stands there between two word boundaries.
TextRange wordAt(const TextFlow &flow, TextPosition position);
// The whole row.
TextRange rowAround(const TextFlow &flow, TextPosition position);

// The text of `range` as it is shown, code verbatim.
QString selectedText(const TextFlow &flow, const TextRange &range);
