// What a launch is for, and how one program tells another.
#pragma once

#include "platform/instance/Activation.h"

#include <QByteArray>

#include <optional>

struct LaunchRequest
{
    enum class Wish
    {
        show,
        newChat
    };

    Wish wish = Wish::show;
    Activation activation;

    bool operator==(const LaunchRequest &) const = default;

    // One line, its end included, of at most `longestLine` bytes.
    QByteArray encode() const;
    // Nothing for whatever encode() would not write.
    static std::optional<LaunchRequest> decode(const QByteArray &line);

    static constexpr qint64 longestLine = 1024;
};
