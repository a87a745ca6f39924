// The kernel's own list of the memory that is built in, which unlike MemTotal includes what the kernel and
// the firmware keep for themselves.
#pragma once

#include <QString>
#include <QtGlobal>

#include <optional>

// The bytes of the online blocks listed in `folder` (/sys/devices/system/memory), or nothing where the kernel
// keeps no such list.
std::optional<quint64> onlineMemory(const QString &folder);
