// Words too long for a text field to look for a place to break them: with
// QTextOption::WrapAtWordBoundaryOrAnywhere Qt takes a time that grows with the square of a word's length,
// and would freeze the window for seconds at 200,000 characters.
#pragma once

#include <QStringView>

// Whether `text` has one, so that its lines should be broken with QTextOption::WrapAnywhere.
bool hasLongWord(QStringView text);
