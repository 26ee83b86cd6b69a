#include "pcf.h"

#include "common.h"
#include "mqicalls.h"
#include "send/put_round.h"

namespace {

/// A definition whose parameters are freed with it.
struct Definition : PcfDef {
    Definition() = default;
    ~Definition() { free_pcf_params(this); }
    Definition(const Definition &) = delete;
    Definition &operator=(const Definition &) = delete;
};

Status read_definition(RunParams *params, PcfDef *definition)
{
    LockedSection locked(params);
    if (locked.status() != StatusOk) return StatusLocalFailure;
    const Status read = read_pcf_file(params, definition);
    const Status released = locked.release();
    return read != StatusOk ? read : released;
}

Status show_put(RunParams *params, MQLONG number)
{
    LockedSection locked(params);
    if (locked.status() != StatusOk) return StatusLocalFailure;
    dsp_timestamp(params);
    std::printf("%d: put from %s\n", number, params->PcfFile);
    return locked.release();
}

} // namespace

Status PutFromPcfDef(RunParams *params, MQHCONN hconn)
{
    Definition definition;
    if (const Status read = read_definition(params, &definition); read != StatusOk) return read;
    MQLONG length = 0;
    const Buffer<> message(make_pcf_message(&params->Md, &definition, &length));
    if (message == nullptr) return StatusLocalFailure;

    const bool openedHere = params->OutputHobj == 0;
    MQHOBJ hobj = params->OutputHobj;
    if (openedHere) {
        if (const Status opened = MQSeriesQOpenForOutput(hconn, &hobj, params); opened != StatusOk) return opened;
    }
    if (params->MsgCount == 0) params->MsgCount = 1;
    if (begin_unit_of_work(params) != StatusOk) return StatusLocalFailure;

    const RunRecord snapshot = params->snapshot();
    Status status = StatusOk;
    for (MQLONG i = 0; i < params->MsgCount && status == StatusOk; ++i) {
        begin_put_round(params, snapshot, i);
        if (show_put(params, i + 1) != StatusOk) return StatusLocalFailure;
        status = MQSeriesPut(hconn, hobj, params, message.get(), length);
    }

    status = end_unit_of_work(params, hconn, status);
    if (openedHere && MQSeriesQClose(hconn, &hobj, params) != StatusOk) status = StatusLocalFailure;
    return status;
}
