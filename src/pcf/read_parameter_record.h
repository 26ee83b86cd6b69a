/// Parameter records of a definition file: "RECORD=field1,field2,...", each one PCF parameter structure.
#pragma once

#include "RunParams.h"
#include "common.h"

struct ParameterRow;

/// The record of this keyword, or null.
const ParameterRow *parameter_row(const char *keyword);

/// Reads the fields behind the keyword, from where strtok_r left `position`, and echoes them. The complete structure,
/// or null after a report: then the file is not to be read any further.
Buffer<> read_parameter_record(RunParams *params, const ParameterRow &row, char *position);
