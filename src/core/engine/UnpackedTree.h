// Looks through what an archive from outside has left behind, before anything of it is used.
#pragma once

#include <QString>

#include <optional>

class UnpackedTree
{
public:
    // The engine program below `root`; nothing when there is none, or when what bears its name is no regular
    // file or lies, once links are followed, outside. Any thread; never throws.
    static std::optional<QString> findProgram(const QString &root);

    // What must not stay below `root`, as a phrase that names it: a symbolic link that leads out, now or once
    // its target exists; anything that is neither file, folder nor link; what cannot be looked at. Nothing
    // for a tree in good order. Any thread; never throws.
    static std::optional<QString> objection(const QString &root);
};
