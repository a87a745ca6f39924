// What the engine itself refused or reported, and answers that are none.
#pragma once

#include "platform/error/Error.h"

class OllamaError final : public Error
{
public:
    enum class Kind
    {
        api,        // the engine refused the request or reported a failure
        badResponse // the answer was not HTTP
    };

    // `message` is the engine's own text; the description is what Friendly makes of it.
    static OllamaError api(const QString &message);
    static OllamaError badResponse();

    Kind kind() const { return m_kind; }
    // The engine's text, unchanged; empty for badResponse.
    const QString &message() const { return m_message; }

private:
    OllamaError(Kind kind, const QString &message, const QString &description);

    Kind m_kind;
    QString m_message;
};
