// A named pipe that other processes hold open for as long as they live, so that a test sees their end.
#pragma once

#include <QString>
#include <QTemporaryDir>

class Lifeline
{
public:
    Lifeline();
    ~Lifeline();
    Lifeline(const Lifeline &) = delete;
    Lifeline &operator=(const Lifeline &) = delete;

    // To be opened for writing, and written to once.
    QString path() const { return m_folder.filePath(QStringLiteral("lifeline")); }
    // What makes a shell, and all it starts, hold the pipe that is its $1.
    static QString script() { return QStringLiteral("exec 3> \"$1\"; echo x >&3; "); }

    bool wasHeld();
    // Everybody who held it is gone.
    bool isReleased();

private:
    QTemporaryDir m_folder;
    int m_reading = -1;
    bool m_held = false;
    bool m_released = false;
};
