// The name under which a conversation is proposed to be exported.
#pragma once

#include <QString>

// `title` as a file's name, with the ending: on one line, without slashes, control and direction characters,
// no dot, dash or blank in front, at most 100 bytes of UTF-8 before the ending. Never empty before it.
QString exportFileName(const QString &title);
