// Texts that are hard on whoever lays them out, searches them or shows them on one line.
#pragma once

#include <QRandomGenerator>
#include <QString>
#include <QStringList>

namespace HostileText {

QStringList names();

// The text of that name, with about `units` UTF-16 code units.
QString text(const QString &name, qsizetype units);

// A little of all of them.
QString sample();

// Pieces of all of them and of what is well-formed, at most `units` code units.
QString mixture(QRandomGenerator &random, qsizetype units);

} // namespace HostileText
