/// What the pieces of a split body have in common: how their descriptors differ from the user's.
#pragma once

#include "RunParams.h"

/// Adds the flag to those that the user gave.
void add_msg_flag(RunParams *params, MQLONG flag);

/// Only the first piece of a body carries its MQRFH2; the others are described by what the header describes.
void describe_without_header(RunParams *params);
