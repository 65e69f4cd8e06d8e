#include "platform/system_error.h"

#include <cerrno>

namespace zvp::platform {

std::string_view system_error_text(int error, FaultDirection direction) noexcept {
    if (error == EIO && direction == FaultDirection::read) return "Read Fault";
    if (error == EIO && direction == FaultDirection::write) return "Write Fault";
    switch (error) {
    case ENOENT:
    case ENOTDIR: return "Path does not exist.";
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
    case EBUSY: return "Access Denied";
    case ENOMEM: return "Not Enough Memory";
    case ENXIO:
    case ESTALE:
    case ETIMEDOUT: return "The device is not ready. Is the connection stable?";
    case EIO:
    case EILSEQ:
    case EBADMSG: return "Cyclic Redundancy Check - Possible Hardware Failure";
    case ENOSPC:
    case EFBIG: return "Disk is Full";
    case EINVAL: return "Invalid parameter. This can happen if the sector alignment is too small.";
    case ENODEV:
    case ENOTCONN: return "The device has been disconnected. Is the connection stable?";
    case EDQUOT: return "Insufficient quota. System may be low on memory.";
    default: return "Unknown Error, See:\nman 3 errno";
    }
}

} // namespace zvp::platform
