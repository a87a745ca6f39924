// The one way in which sizes are written for the user.
#pragma once

#include <QString>
#include <QtGlobal>

// `bytes` in decimal units, for example "523 MB", "1.4 GB" or "Zero KB".
QString byteCountText(qint64 bytes);
