// How far the program's work has come, as a bar on its icon in the desktop's launcher.
#pragma once

#include <memory>
#include <optional>

class LauncherProgress
{
public:
    virtual ~LauncherProgress() = default;

    // The desktop's own; the bar goes with it. Nothing is seen where the desktop has no such bar.
    static std::unique_ptr<LauncherProgress> ofDesktop();

    // `fraction` is 0 to 1; without one there is no bar. Returns at once.
    virtual void show(std::optional<double> fraction) = 0;
};
