#include "core/api/Cancellation.h"

#include "platform/error/CancellationError.h"
#include "platform/http/TransportError.h"

bool isCancellation(const std::exception_ptr &error)
{
    try {
        std::rethrow_exception(error);
    } catch (const CancellationError &) {
        return true;
    } catch (const TransportError &transport) {
        return transport.code() == TransportError::Code::cancelled;
    } catch (...) {
        return false;
    }
}
