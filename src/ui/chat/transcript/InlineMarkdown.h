// Inline Markdown as styled text.
#pragma once

#include "ui/chat/transcript/StyledText.h"

#include <QStringView>

// Interprets one line: emphasis, strong emphasis, code spans, strikethrough and links become runs, entities
// are decoded, an image is its description. Block syntax and HTML stay as written, as does white space; a
// line that cannot be interpreted comes out plain.
StyledText inlineMarkdown(QStringView line);
