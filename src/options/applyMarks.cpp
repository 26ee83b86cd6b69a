#include "parser.h"

namespace {

/// A version that was given by name holds, wherever on the command line it stands.
void raiseVersion(MQLONG &version, MQLONG raised, MQULONG given)
{
    if (given == 0) version = raised;
}

} // namespace

void applyMarks(RunParams &params, MQULONG mdField, unsigned marks)
{
    params.MdFieldsSet |= mdField;
    if (marks == 0) return;

    if (marks & MarkConnX) params.UseConnX = 1;
    if (marks & MarkRfh2) params.UseRfh2 = 1;
    if (marks & MarkAuthInfo) params.Sco.AuthInfoRecCount = 1;
    if (marks & MarkMatchCorrelId) params.Gmo.MatchOptions |= MQMO_MATCH_CORREL_ID;
    if (marks & MarkObjectType) params.ObjectTypeGiven = 1;
    if (marks & MarkCnoVersion) params.VersionsSet |= VersionGivenCno;
    if (marks & MarkCdVersion) params.VersionsSet |= VersionGivenCd;
    if (marks & MarkMdVersion2) raiseVersion(params.Md.Version, MQMD_VERSION_2, params.MdFieldsSet & MdFieldVersion);
    if (marks & MarkCnoVersion2)
        raiseVersion(params.Cno.Version, MQCNO_VERSION_2, params.VersionsSet & VersionGivenCno);
    if (marks & MarkCdVersion7) raiseVersion(params.Cd.Version, MQCD_VERSION_7, params.VersionsSet & VersionGivenCd);
}
