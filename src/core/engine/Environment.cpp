#include "core/engine/Environment.h"

#include <unistd.h>

extern char **environ; // macOS declares it nowhere

Environment systemEnvironment()
{
    Environment environment;
    for (char **entry = environ; entry && *entry; ++entry) {
        const QByteArray text(*entry);
        const qsizetype equals = text.indexOf('=');
        if (equals > 0)
            environment.insert(text.first(equals), text.sliced(equals + 1));
    }
    return environment;
}
