#include "platform/error/CancellationError.h"

#include <QCoreApplication>

CancellationError::CancellationError()
    : Error(QCoreApplication::translate("CancellationError", "The operation was cancelled."))
{
}
