// Distribution lists: several queues opened with one MQOPEN, a message put on all of them with one MQPUT.
//
// Each destination has an outcome of its own; what cannot be opened or put to does not keep the others from theirs. All
// that one put brings about is one unit of work. Destinations elsewhere that share a transmission queue with DISTL(YES)
// share one message there, which says in an MQDH whom it is for (distribution_header.h).
#pragma once

#include "cmqc.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/destination.h"
#include "qmgr/core/open.h"
#include "qmgr/core/put.h"
#include "qmgr/core/put_records.h"
#include "qmgr/store/message.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::core {

// What a call answers for all of them: the outcome that they share, else MQRC_MULTIPLE_REASONS, a failure only if all
// have failed.
Outcome combined(const DistributionList &list);

// How many destinations here and elsewhere have not failed, and how many have.
struct ListCounts {
    MQLONG known = 0;
    MQLONG unknown = 0;
    MQLONG invalid = 0;
};
ListCounts countsOf(const DistributionList &list);

// Opens the destinations for output and leaves the handle, which has taken the list, in `hobj`; where all have failed
// nothing is open, and the list stays the caller's. MQRC_HANDLE_NOT_AVAILABLE and MQRC_Q_MGR_QUIESCING are of the whole
// call.
Outcome openList(Connection &connection, DistributionList &list, MQLONG options, MQHOBJ &hobj);
// Opens what was open once more, in another life of the queue manager.
Outcome reopenList(Connection &connection, OpenObject &object);
Outcome closeList(Connection &connection, const DistributionList &list);

// Finds the queues of a list that is put to with MQPUT1.
void resolveList(Connection &connection, DistributionList &list);

// What is wrong with the put whatever the destinations are; to be asked first. MQRC_NONE, MQRC_GROUP_ID_ERROR: messages
// in groups would have one group for all destinations.
MQLONG checkPutToList(const DistributionList &list, const PutRequest &request, const PutRecords &records,
                      const MQMD &md);
// Puts the message on all destinations, with the fields that the records have for each; identifiers that are made are
// left in the records. With MQPMO_NEW_CORREL_ID one CorrelId is made for all destinations. `message.header.md` becomes
// what MQPUT returns: that of the first destination, but with the other identifiers that the program gave.
Outcome putToList(Connection &connection, DistributionList &list, const PutRequest &request, const PutRecords &records,
                  store::NewMessage &message);

} // namespace mqrig::qmgr::core
