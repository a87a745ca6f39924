// The tabs of the main window.
#pragma once

enum class AppTab
{
    models,
    chat,
    server
};
