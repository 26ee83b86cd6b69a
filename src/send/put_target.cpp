#include "send/put_target.h"

#include "mqicalls.h"
#include "send.h"

PutTarget::~PutTarget()
{
    if (listOwner_ != nullptr) freeForDestinationList(listOwner_);
}

Status PutTarget::open(RunParams *params, MQHCONN hconn)
{
    hobj = params->OutputHobj;
    if (hobj != 0) return StatusOk;
    openedHere = MQSeriesQOpenForOutput(hconn, &hobj, params) == StatusOk;
    if (openedHere && params->ObjectRecList != nullptr) listOwner_ = params;
    return openedHere ? StatusOk : StatusLocalFailure;
}

Status PutTarget::set_properties(RunParams *params, MQHCONN hconn)
{
    if (params->SetMpList == nullptr) return StatusOk;
    madeHandle = MQSeriesCreateMH(hconn, params) == StatusOk;
    if (!madeHandle || make_mp(params, hconn) != StatusOk) return StatusLocalFailure;
    return StatusOk;
}

Status PutTarget::finish(RunParams *params, MQHCONN hconn, MQLONG ownUnitOfWork, Status status)
{
    if (madeHandle && MQSeriesDeleteMH(hconn, params) != StatusOk) status = StatusLocalFailure;
    if (ownUnitOfWork != 0) status = end_unit_of_work(params, hconn, status);
    listOwner_ = nullptr; // closing frees the list
    if (openedHere && MQSeriesQClose(hconn, &hobj, params) != StatusOk) status = StatusLocalFailure;
    return status;
}
