#include "common.h"

void timeDiff(std::FILE *stream, const timespec &start, const timespec &end)
{
    // The parts are subtracted first: two large sums would differ by what their rounding leaves.
    const double elapsed = timespecToDouble(end.tv_sec - start.tv_sec, end.tv_nsec - start.tv_nsec);
    info(stream, "Elapsed time = %f sec", elapsed);
}
