#include "reconcile.h"

#include <algorithm>

namespace {

/// The primary's value where it has one, else the secondary's.
template <class T>
void share(T &primary, T &secondary)
{
    if (primary != T{}) {
        secondary = primary;
    } else {
        primary = secondary;
    }
}

/// Both are on when either is.
void either(MQLONG &primary, MQLONG &secondary)
{
    if (primary != 0 || secondary != 0) primary = secondary = 1;
}

/// Off, plain or verbose: the larger one wins.
void larger(MQLONG &primary, MQLONG &secondary)
{
    primary = secondary = std::max(primary, secondary);
}

} // namespace

void reconcile(RunParams &primary, RunParams &secondary)
{
    share(primary.ThreadCount, secondary.ThreadCount);
    share(primary.InnerConnThreadCount, secondary.InnerConnThreadCount);
    share(primary.MsgText, secondary.MsgText);
    share(primary.InputFile, secondary.InputFile);
    share(primary.OutputFile, secondary.OutputFile);
    share(primary.OutputDir, secondary.OutputDir);
    share(primary.InputDir, secondary.InputDir);
    share(primary.MsgCount, secondary.MsgCount);
    share(primary.StopApiName, secondary.StopApiName);
    share(primary.YieldAfterCall, secondary.YieldAfterCall);
    either(primary.ApiTrace, secondary.ApiTrace);
    either(primary.UseConnX, secondary.UseConnX);
    either(primary.ForceBackout, secondary.ForceBackout);
    larger(primary.DumpMode, secondary.DumpMode);
    larger(primary.BrowseMode, secondary.BrowseMode);
}
