#include "platform/appearance/AppearanceSource.h"

void AppearanceSource::setWishes(const AppearanceWishes &wishes)
{
    if (m_wishes == wishes)
        return;
    m_wishes = wishes;
    Q_EMIT wishesChanged();
}
