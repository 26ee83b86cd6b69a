#include "qmgr/store/system_error.h"

#include <cerrno>

namespace mqrig::qmgr::store {

Outcome outcomeOfSystem(int error)
{
    switch (error) {
    case 0:
        return success();
    case ENOSPC:
    case EDQUOT:
        return failure(MQRC_STORAGE_NOT_AVAILABLE);
    case EACCES:
    case EPERM:
    case EROFS:
        return failure(MQRC_NOT_AUTHORIZED);
    case ENOMEM:
    case EMFILE:
    case ENFILE:
    case EAGAIN:
    case ENOLCK:
    case EINTR:
    case EIO:
        return failure(MQRC_RESOURCE_PROBLEM);
    default:
        return failure(MQRC_UNEXPECTED_ERROR);
    }
}

} // namespace mqrig::qmgr::store
