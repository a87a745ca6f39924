// The folders the program writes to, and a few questions about the machine that others ask before they act.
#pragma once

#include "platform/async/Stop.h"

#include <QString>

#include <optional>

// No state but the application folder; every operation may be called from any thread, blocks, and never
// throws.
class AppPaths
{
public:
    // The parent of all the others: "Tarnwick" in the user's application data folder.
    static QString applicationDir();
    // Puts `folder` in its place, for this process; empty restores the usual one. To be called before any
    // other thread asks for a path.
    static void setApplicationDir(const QString &folder);

    static QString engineDir();
    static QString modelsDir();
    static QString chatsDir();
    static QString tempDir();

    // Creates `folder` and its missing parents, closed to other users. A failure is swallowed: the next write
    // reports its own.
    static void ensure(const QString &folder);

    // The sum of the lengths, in bytes, of the regular files below `folder`; 0 when it is missing. Symbolic
    // links below it are neither counted nor followed, and what cannot be read counts nothing. It takes time
    // on a large tree; once `stop` asks, what has been counted so far is returned.
    static qint64 directorySize(const QString &folder, const StopToken &stop = {});

    // The bytes that the user can still fill on the volume of `path`; nothing when the system does not say.
    static std::optional<qint64> freeBytes(const QString &path);

    // The engine program inside an unpacked release: "ollama" in `folder` itself, else the first regular file
    // of that name below it.
    static std::optional<QString> findBinary(const QString &folder);

    // The first free TCP port among the 200 above `base`, up to 65535.
    static std::optional<int> findFreePort(int base);
    // Whether a server could listen on `port` on all interfaces now; false outside 1 to 65535.
    static bool portIsFree(int port);
};
