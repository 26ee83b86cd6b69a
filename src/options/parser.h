/// What the files of the option parser share.
#pragma once

#include "option_rows.h"
#include "options.h"

#include <span>

/// The scan of one command line.
struct Scan {
    RunParams *primary;
    RunParams *secondary;
    RunParams *current;               ///< the record that options fill now
    bool matchOptionsCleared = false; ///< an MQMO_* name was met
};

/// Does what the row says with `value` (null for an option without one). False after an error that is reported.
bool applyOption(Scan &scan, const OptionRow &row, char *value);
/// Does what the row says with the constant of this name. False after an error that is reported.
bool applyConstant(Scan &scan, const ConstantRow &row, const char *name);
/// What rows of both kinds do besides.
void applyMarks(RunParams &params, MQULONG mdField, unsigned marks);

/// The operation that the records ask for, after the scan.
CommandLine selectOperation(const char *program, RunParams *primary, RunParams *secondary);

// ---- Values -------------------------------------------------------------------------------------------------------

/// A byte string, text or "0x" and digits, over the beginning of the row's field.
bool readBytes(const OptionRow &row, std::span<char> field, const char *value);
/// The same, only "0x" and digits.
bool readHexBytes(const OptionRow &row, std::span<char> field, const char *value);
/// An encoding: decimal, or "0x" and three digits.
bool readEncoding(const OptionRow &row, MQLONG &encoding, const char *value);
/// The same, or MQENC_* names separated by ":"; unknown names are skipped.
bool readEncodingList(const OptionRow &row, MQLONG &encoding, const char *value);

// ---- Messages -----------------------------------------------------------------------------------------------------

/// A message on standard error. Always false, so that a check can end with it.
bool refuse(const char *format, ...) __attribute__((format(printf, 1, 2)));
/// "invalid parameter specified." on standard output. Always false.
bool refuseName(const char *name);
