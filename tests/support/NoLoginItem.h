// A desktop that never starts the program by itself.
#pragma once

#include "platform/loginitem/LoginItem.h"

class NoLoginItem final : public LoginItem
{
public:
    bool isEnabled() const override { return false; }
    void enable() override {}
    void disable() override {}
};
