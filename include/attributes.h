/// Object attributes by MQINQ and MQSET.
///
/// How to add a new attribute
///   1. Add its selector to MQIA_TBL or MQCA_TBL (see tables.h).
///   2. Add its row to the output table `prm_to_msg`: selector, keyword, and a `c_` table of keywords if its values have
///      names (tables/command_language_tables.cpp).
#pragma once

#include "RunParams.h"
#include "status.h"

/// Inquires the attributes of `-inq` with one MQINQ and shows them on one line.
Status CallMQINQ(RunParams *params, MQHCONN hconn);
/// Sets the attributes of `-set` with one MQSET and echoes the request.
Status CallMQSET(RunParams *params, MQHCONN hconn);
