#include "platform/instance/Activation.h"

#include <algorithm>

namespace {

constexpr const char *tokenVariable = "XDG_ACTIVATION_TOKEN";
constexpr const char *startupIdVariable = "DESKTOP_STARTUP_ID";
// Those of today's desktops are a tenth of that.
constexpr qsizetype longest = 256;

QByteArray validVariable(const char *name)
{
    const QByteArray value = qgetenv(name);
    return Activation::isValid(value) ? value : QByteArray();
}

} // namespace

Activation Activation::fromEnvironment()
{
    return {validVariable(tokenVariable), validVariable(startupIdVariable)};
}

void Activation::clearEnvironment()
{
    qunsetenv(tokenVariable);
    qunsetenv(startupIdVariable);
}

bool Activation::isValid(const QByteArray &text)
{
    const auto isVisible = [](char c) { return c > ' ' && c < '\x7f'; };
    return !text.isEmpty() && text.size() <= longest && std::all_of(text.begin(), text.end(), isVisible);
}
