// What the program asks of the user's desktop: panels, the pasteboard, the file manager.
#pragma once

#include "platform/async/Task.h"

#include <QString>

#include <optional>

class Desktop
{
public:
    virtual ~Desktop() = default;

    // Asks for a place to save a plain-text file; nothing when the user cancels. At most one panel shows at
    // a time.
    virtual Task<std::optional<QString>> chooseSaveFile(QString suggestedName) = 0;
    // Asks for one existing file, no folder, in a panel with `title`; nothing when the user cancels.
    virtual Task<std::optional<QString>> chooseFile(QString title) = 0;

    // Replaces what the general pasteboard holds by this plain text.
    virtual void copyText(const QString &text) = 0;
    // Opens the file manager with `path` selected in its folder.
    virtual void revealInFileManager(const QString &path) = 0;
    // Brings the program's main window in front of every other program.
    virtual void bringToFront() = 0;
};
