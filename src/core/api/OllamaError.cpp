#include "core/api/OllamaError.h"

#include "core/api/Friendly.h"

#include <QCoreApplication>

OllamaError::OllamaError(Kind kind, const QString &message, const QString &description)
    : Error(description), m_kind(kind), m_message(message)
{
}

OllamaError OllamaError::api(const QString &message)
{
    return OllamaError(Kind::api, message, Friendly::text(message));
}

OllamaError OllamaError::badResponse()
{
    return OllamaError(
        Kind::badResponse, {},
        QCoreApplication::translate("OllamaError", "The engine sent an answer I could not read."));
}
