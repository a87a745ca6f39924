// The login item as desktops of the XDG kind keep it: a file in the user's autostart folder.
#pragma once

#include "platform/loginitem/LoginItem.h"

#include <QString>

class AutostartEntry final : public LoginItem
{
public:
    // `folder` is the autostart folder, which need not exist; `program` the path of what to start, with
    // `arguments`, whose entry is one of its own.
    AutostartEntry(const QString &folder, QString program, QStringList arguments = {});

    // An entry whose program is gone counts as none: the desktop passes it over.
    bool isEnabled() const override;
    void enable() override;
    void disable() override;

private:
    const QString m_file;
    const QString m_program;
    const QStringList m_arguments;
};

// The program as the user has it installed: what the search path knows it by, if that is what runs, else its
// own file.
QString installedProgram();
