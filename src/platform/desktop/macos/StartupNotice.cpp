#include "platform/desktop/StartupNotice.h"

void noticeStartup(WId, const QByteArray &) {}
