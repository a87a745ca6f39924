// The characters that HTML's named and numeric character references stand for.
#pragma once

#include <QString>
#include <QStringView>

// `reference` with its '&' and ';', for example "&amp;" or "&#x2014;". A name nobody knows stays as written,
// a number that is no character becomes U+FFFD.
QString decodedEntity(QStringView reference);
