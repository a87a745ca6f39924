// Which hosts are this machine itself.
#pragma once

#include <QString>

// `host` as it stands in an address: a name or an IP address. No name is looked up.
bool isLoopback(const QString &host);
