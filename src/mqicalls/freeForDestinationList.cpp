#include "mqicalls.h"

#include <cstdlib>

void freeForDestinationList(RunParams *params)
{
    std::free(params->Od.ObjectRecPtr);
    std::free(params->ResponseRecs);
    std::free(params->Pmo.PutMsgRecPtr);
    std::free(const_cast<void *>(params->PutMsgRecsGiven)); // written to only where it was made
    // Nothing in the record points at freed memory, and nothing counts destinations that are gone.
    params->Od.ObjectRecPtr = nullptr;
    params->Od.ResponseRecPtr = nullptr;
    params->ResponseRecs = nullptr;
    params->Pmo.PutMsgRecPtr = nullptr;
    params->PutMsgRecsGiven = nullptr;
    params->Pmo.ResponseRecPtr = nullptr;
    params->DestCount = 0;
    params->Od.RecsPresent = 0;
    params->Pmo.RecsPresent = 0;
}
