#include "common.h"

void timeDiff(std::FILE *stream, const timespec &start, const timespec &end)
{
    const double elapsed = timespecToDouble(end.tv_sec, end.tv_nsec) - timespecToDouble(start.tv_sec, start.tv_nsec);
    info(stream, "Elapsed time = %f sec", elapsed);
}
