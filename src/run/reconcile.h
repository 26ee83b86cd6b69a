/// Settings that are given for either record and hold for both.
#pragma once

#include "RunParams.h"

void reconcile(RunParams &primary, RunParams &secondary);
