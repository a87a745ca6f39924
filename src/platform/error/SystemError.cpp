#include "platform/error/SystemError.h"

#include <cerrno>

namespace {

// strerror() answers in the user's language, and not in the same words everywhere.
const char *knownText(int code)
{
    switch (code) {
    case EPERM:
        return "Operation not permitted";
    case ENOENT:
        return "No such file or directory";
    case EINTR:
        return "Interrupted system call";
    case EIO:
        return "Input/output error";
    case E2BIG:
        return "Argument list too long";
    case ENOEXEC:
        return "Exec format error";
    case EBADF:
        return "Bad file descriptor";
    case ECHILD:
        return "No child processes";
    case EAGAIN:
        return "Resource temporarily unavailable";
    case ENOMEM:
        return "Cannot allocate memory";
    case EACCES:
        return "Permission denied";
    case EBUSY:
        return "Device or resource busy";
    case EEXIST:
        return "File exists";
    case EXDEV:
        return "Invalid cross-device link";
    case ENODEV:
        return "No such device";
    case ENOTDIR:
        return "Not a directory";
    case EISDIR:
        return "Is a directory";
    case EINVAL:
        return "Invalid argument";
    case ENFILE:
        return "Too many open files in system";
    case EMFILE:
        return "Too many open files";
    case ETXTBSY:
        return "Text file busy";
    case EFBIG:
        return "File too large";
    case ENOSPC:
        return "No space left on device";
    case EROFS:
        return "Read-only file system";
    case EMLINK:
        return "Too many links";
    case EPIPE:
        return "Broken pipe";
    case ENAMETOOLONG:
        return "File name too long";
    case ENOTEMPTY:
        return "Directory not empty";
    case ELOOP:
        return "Too many levels of symbolic links";
    case ENOSYS:
        return "Function not implemented";
    case ENOTSUP:
        return "Operation not supported";
    case ETIMEDOUT:
        return "Connection timed out";
    case ESTALE:
        return "Stale file handle";
    case EDQUOT:
        return "Disk quota exceeded";
#ifdef EBADARCH
    case EBADARCH:
        return "Bad CPU type in executable";
#endif
    default:
        return nullptr;
    }
}

} // namespace

SystemError::SystemError(int code) : Error(text(code)), m_code(code) {}

QString SystemError::text(int code)
{
    if (const char *known = knownText(code))
        return QString::fromLatin1(known);
    return QStringLiteral("Unknown error %1").arg(code);
}
