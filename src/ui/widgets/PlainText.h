// Guards text that comes from outside (the engine, a model, a file name) against being read as markup or
// mnemonics, and the windows against its length.
#pragma once

#include <QString>

// `text` for a button, a menu or a tab, where a single '&' would mark a key.
QString withoutMnemonics(const QString &text);

// `text` for a tooltip, which Qt would show as rich text when it looks like it.
QString plainToolTip(const QString &text);

// As much of `text` as a place made for a few sentences shows: at most `longest` characters and 12 lines, and
// an ellipsis where it was cut.
QString shortened(const QString &text, qsizetype longest = 1000);
