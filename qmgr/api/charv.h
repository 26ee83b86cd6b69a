// Texts of variable length (MQCHARV) inside the MQI's structures: topic strings, names and data of subscriptions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "cmqc.h"

namespace mqrig::qmgr::api {

// The text in UTF-8; empty where none is given. False, with nothing read, for a length or an address that cannot be,
// for text that is none of its character set, and for text of more than `most` bytes. `structure`: where VSOffset
// counts from; `ccsid`: the queue manager's.
bool loadText(const MQCHARV &from, const void *structure, std::size_t most, MQLONG ccsid, std::string &text);

// Whether a text can be written there at all.
bool isWritable(const MQCHARV &to);
// Writes as much as the buffer takes; VSLength tells how long all of it is. Without a buffer only that.
void storeText(std::string_view text, void *structure, MQLONG ccsid, MQCHARV &to);

} // namespace mqrig::qmgr::api
