/// The template of the run parameter record: constant data, every field's default from its declaration.

#include "RunParams.h"

constinit const RunParams DEFAULT_RUN_PARAMS{};
