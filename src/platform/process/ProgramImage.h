// What a program is started with, made before the fork: nothing may be allocated after it.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

class ProgramImage
{
public:
    // `environment` is the whole of it; without one the program gets that of this process.
    ProgramImage(const QString &program, const QStringList &arguments,
                 const std::optional<QMap<QByteArray, QByteArray>> &environment);
    ProgramImage(const ProgramImage &) = delete;
    ProgramImage &operator=(const ProgramImage &) = delete;

    // Becomes the program: the leader of a process group of its own, with no signal blocked or ignored, its
    // output and errors on `output` and no other descriptor of this process but standard input. For a child
    // that has just been forked, where only async-signal-safe calls are allowed. Returns when a call has
    // failed, with its reason in errno.
    void execute(int output) const;

private:
    std::vector<QByteArray> m_arguments; // the program's path first
    std::vector<QByteArray> m_environment;
    std::vector<char *> m_argumentPointers;
    std::vector<char *> m_environmentPointers; // empty: that of this process
};
