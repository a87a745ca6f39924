// Guards text that comes from outside (the engine, a model, a file name) against being read as markup or
// mnemonics; both forms are bounded as OutsideText.h says.
#pragma once

#include <QString>

// `text` for a button, a menu or a tab, where a single '&' would mark a key.
QString withoutMnemonics(const QString &text);

// `text` for a tooltip, which Qt would show as rich text when it looks like it.
QString plainToolTip(const QString &text);
