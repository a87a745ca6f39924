// Whether the desktop starts the program when the user logs in.
#pragma once

#include <QStringList>

#include <memory>

class LoginItem
{
public:
    virtual ~LoginItem() = default;

    // Asked of the desktop each time: the user can change it elsewhere. Never throws.
    virtual bool isEnabled() const = 0;
    // Both do nothing where it is so already, and throw an Error when the desktop refuses.
    virtual void enable() = 0;
    virtual void disable() = 0;

    // The desktop's own, for the program that runs. It is to be started with `arguments`; where the desktop
    // has room for several items, each list of arguments has one of its own. macOS has one, and passes none.
    static std::unique_ptr<LoginItem> ofDesktop(const QStringList &arguments);
};
