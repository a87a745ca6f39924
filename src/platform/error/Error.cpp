#include "platform/error/Error.h"

Error::Error(const QString &description) : m_description(description), m_utf8(description.toUtf8()) {}

QString errorDescription(const std::exception_ptr &error)
{
    try {
        std::rethrow_exception(error);
    } catch (const Error &known) {
        return known.description();
    } catch (const std::exception &other) {
        return QString::fromUtf8(other.what());
    } catch (...) {
        return {};
    }
}
