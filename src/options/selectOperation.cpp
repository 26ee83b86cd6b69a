/// Mode selection: the first step that fits decides. A put mode is chosen by its message source, a get mode by the
/// absence of one; -inq wins over everything, and -oq and -iq turn the rest into an operation on both records.

#include "parser.h"

#include "attributes.h"
#include "mqicalls.h"
#include "pcf.h"
#include "receive.h"
#include "send.h"

namespace {

bool bodyGiven(const RunParams &params)
{
    return params.MsgText != nullptr || params.MsgHex != nullptr;
}

CommandLine single(SingleOperation operation)
{
    return {CommandLine::Single, operation, nullptr};
}
CommandLine paired(PairedOperation operation)
{
    return {CommandLine::Paired, nullptr, operation};
}

CommandLine put(const char *program, RunParams *params, SingleOperation operation)
{
    Judge_syncpoint_put(program, params);
    params->OutputQName = params->QName;
    return single(operation);
}

CommandLine get(const char *program, RunParams *params, SingleOperation operation)
{
    Judge_syncpoint_get(program, params);
    params->InputQName = params->QName;
    return single(operation);
}

/// The operation of the message source that is given, or null.
SingleOperation putOperation(const RunParams &params)
{
    if (bodyGiven(params)) return PutFromCmdLine;
    if (params.InputFile != nullptr) return PutFromFile;
    if (params.InputDir != nullptr) return PutFromDir;
    return nullptr;
}

} // namespace

CommandLine selectOperation(const char *program, RunParams *primary, RunParams *secondary)
{
    if (primary->QMgrName == nullptr) {
        refuse("queue manager name(-qm) is required.\n");
        return {CommandLine::Error};
    }
    if (primary->InqList != nullptr) return single(CallMQINQ);

    const SingleOperation source = putOperation(*primary);
    if (primary->ObjectRecList != nullptr && source != nullptr) return put(program, primary, source);

    if (primary->QName == nullptr) {
        refuse("faild to select function.\n");
        return {CommandLine::Error};
    }
    if (primary->OutputQName != nullptr) {
        Judge_syncpoint_getput(program, primary, secondary);
        primary->InputQName = primary->QName;
        return paired(Queue2Queue);
    }
    if (primary->InputQName != nullptr) {
        Judge_syncpoint_put(program, primary);
        Judge_syncpoint_get(program, secondary);
        primary->OutputQName = primary->QName;
        return paired(SendReceive);
    }
    if (source != nullptr) return put(program, primary, source);
    if (primary->OutputFile != nullptr) return get(program, primary, GetToFile);
    if (primary->OutputDir != nullptr) return get(program, primary, GetToDir);
    if (primary->SetList != nullptr) return single(CallMQSET);
    if (primary->PcfFile != nullptr) return put(program, primary, PutFromPcfDef);
    return get(program, primary, GetMQMessage);
}
