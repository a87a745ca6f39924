#include "platform/text/ByteCount.h"

#include <QCoreApplication>

#include <array>
#include <cstddef>

namespace {

struct Unit
{
    quint64 bytes;
    int decimals; // at most
    const char *text;
};

constexpr std::array units{
    Unit{1'000, 0, QT_TRANSLATE_NOOP("ByteCount", "%1 KB")},
    Unit{1'000'000, 1, QT_TRANSLATE_NOOP("ByteCount", "%1 MB")},
    Unit{1'000'000'000, 2, QT_TRANSLATE_NOOP("ByteCount", "%1 GB")},
    Unit{1'000'000'000'000, 2, QT_TRANSLATE_NOOP("ByteCount", "%1 TB")},
    Unit{1'000'000'000'000'000, 2, QT_TRANSLATE_NOOP("ByteCount", "%1 PB")},
    Unit{1'000'000'000'000'000'000, 2, QT_TRANSLATE_NOOP("ByteCount", "%1 EB")},
};

QString translated(const char *text)
{
    return QCoreApplication::translate("ByteCount", text);
}

constexpr quint64 powerOfTen(int exponent)
{
    quint64 power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

// `count` steps of a tenth, a hundredth … as a decimal number without trailing zeros.
QString decimalText(quint64 count, int decimals)
{
    while (decimals > 0 && count % 10 == 0) {
        count /= 10;
        --decimals;
    }
    QString text = QString::number(count).rightJustified(decimals + 1, u'0');
    if (decimals > 0)
        text.insert(text.size() - decimals, u'.');
    return text;
}

QString magnitudeText(quint64 magnitude)
{
    if (magnitude == 1)
        return translated(QT_TRANSLATE_NOOP("ByteCount", "1 byte"));
    if (magnitude < units.front().bytes)
        return QCoreApplication::translate("ByteCount", "%n bytes", nullptr, static_cast<int>(magnitude));
    for (std::size_t i = 0;; ++i) {
        const Unit &unit = units.at(i);
        const quint64 scale = powerOfTen(unit.decimals);
        const quint64 step = unit.bytes / scale;
        const quint64 count = magnitude / step + (magnitude % step >= step / 2 ? 1 : 0);
        if (count < 1'000 * scale || i + 1 == units.size())
            return translated(unit.text).arg(decimalText(count, unit.decimals));
    }
}

} // namespace

QString byteCountText(qint64 bytes)
{
    if (bytes == 0)
        return translated(QT_TRANSLATE_NOOP("ByteCount", "Zero KB"));
    // Unsigned, so that the smallest number has a magnitude too.
    const auto pattern = static_cast<quint64>(bytes);
    return bytes < 0 ? u'-' + magnitudeText(0 - pattern) : magnitudeText(pattern);
}
