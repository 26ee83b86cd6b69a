#include "mqicalls.h"

Status TNSBeginTransaction()
{
    return StatusOk;
}
Status TNSEndTransaction()
{
    return StatusOk;
}
Status TNSAbortTransaction()
{
    return StatusOk;
}
Status TNSResumeTransaction()
{
    return StatusOk;
}
Status TNSOpenTFILE()
{
    return StatusOk;
}
