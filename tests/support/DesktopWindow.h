// The program's window, seen and handled from outside as its user does.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace desktopwindow {

inline QString xdotool(const QStringList &arguments)
{
    QProcess tool;
    tool.start(QStringLiteral("xdotool"), arguments);
    if (!tool.waitForFinished(60'000))
        qFatal("xdotool does not end");
    return QString::fromUtf8(tool.readAllStandardOutput()).trimmed();
}

// The program's window while it can be seen; empty otherwise.
inline QString shownWindow()
{
    return xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                    QStringLiteral("^Tarnwick$")});
}

inline bool showsWindow()
{
    return !shownWindow().isEmpty();
}

// Whether the window stands at 60, 40 and is 1020 wide and 740 high.
inline bool isInPlace()
{
    const QString place =
        xdotool({QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), shownWindow()});
    return place.contains(QLatin1StringView("X=60\nY=40\nWIDTH=1020\nHEIGHT=740"));
}

// Asks for that; a window that has just come may still be placing itself.
inline void putInPlace()
{
    const QString window = shownWindow();
    xdotool({QStringLiteral("windowsize"), window, QStringLiteral("1020"), QStringLiteral("740"),
             QStringLiteral("windowmove"), window, QStringLiteral("60"), QStringLiteral("40")});
}

inline void press(const QString &keys)
{
    xdotool({QStringLiteral("windowfocus"), shownWindow(), QStringLiteral("key"), keys});
}

} // namespace desktopwindow
