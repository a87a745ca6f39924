#include "platform/http/TransportError.h"

#include <QCoreApplication>

namespace {

QString standardDescription(TransportError::Code code)
{
    switch (code) {
    case TransportError::Code::notConnectedToInternet:
        return QCoreApplication::translate("TransportError", "The computer is not connected to a network.");
    case TransportError::Code::connectionLost:
        return QCoreApplication::translate("TransportError", "The network connection was lost.");
    case TransportError::Code::cannotFindHost:
        return QCoreApplication::translate("TransportError", "The server could not be found.");
    case TransportError::Code::timedOut:
        return QCoreApplication::translate("TransportError", "The request timed out.");
    case TransportError::Code::cannotConnect:
        return QCoreApplication::translate("TransportError", "Could not connect to the server.");
    case TransportError::Code::cancelled:
        return QCoreApplication::translate("TransportError", "The request was cancelled.");
    case TransportError::Code::other:
        break;
    }
    return QCoreApplication::translate("TransportError", "The request failed.");
}

} // namespace

TransportError::TransportError(Code code) : TransportError(code, standardDescription(code)) {}
