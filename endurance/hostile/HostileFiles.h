// What can lie in the chats folder that the program never put there.
#pragma once

#include <QRandomGenerator>
#include <QString>
#include <QStringList>

namespace HostileFiles {

QStringList names();

// Puts it into `folder`, beside what is there.
void make(const QString &name, const QString &folder, QRandomGenerator &random);

} // namespace HostileFiles
