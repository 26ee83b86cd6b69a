/// The symbolic-constant tables: MQI names as the user writes them, and their values.
///
/// How to add a new constant
///   1. Add a row to its table in tables/, where the order of the rows is the order of `-v all`.
///   2. Raise the table's row count there.
/// How to add a new table
///   1. Define it in tables/ with its row count, declare it here.
///   2. If a bare name of it is an argument, add its prefix to the prefix rows (option_rows.h).
///   3. Add it to the listing (src/run/printVerbose.cpp).
///
/// Every table ends with a row whose name is null. Several names may share a value, and one name may stand twice.
#pragma once

#include <cmqc.h>

#include <cstring>

struct NamedInteger {
    const char *name;
    MQLONG value;
};

/// A character attribute with its length in bytes.
struct AttributeSelector {
    const char *name;
    MQLONG selector;
    MQLONG length;
};

/// A byte string of the width of its table: formats 8, message, correlation and group identifiers 24, tokens 32.
struct NamedBytes {
    const char *name;
    const void *value;
};

/// How an attribute is shown: "KEYWORD(value)", or the value alone where `keyword` is empty. `values`, where there are
/// any, are the keywords that integers stand for.
struct AttributeOutput {
    MQLONG selector = 0;
    const char *keyword = nullptr;
    const NamedInteger *values = nullptr;
};

struct NamedFunction {
    const char *name;
    PMQCB_FUNCTION function;
};

extern const NamedInteger MQMD_TBL[];
extern const NamedInteger MQRO_TBL[];
extern const NamedInteger MQMT_TBL[];
extern const NamedInteger MQEI_TBL[];
extern const NamedInteger MQFB_TBL[];
extern const NamedInteger MQENC_TBL[];
extern const NamedInteger MQCCSI_TBL[];
extern const NamedBytes MQFMT_TBL[];
extern const NamedInteger MQPRI_TBL[];
extern const NamedInteger MQPER_TBL[];
extern const NamedBytes MQMI_TBL[];
extern const NamedBytes MQCI_TBL[];
extern const NamedBytes MQACT_TBL[];
extern const NamedInteger MQACTT_TBL[];
extern const NamedInteger MQAT_TBL[];
extern const NamedBytes MQGI_TBL[];
extern const NamedInteger MQMF_TBL[];
extern const NamedInteger MQOL_TBL[];
extern const NamedInteger MQRFH_TBL[];
extern const NamedInteger MQCNO_V_TBL[];
extern const NamedInteger MQCNO_TBL[];
extern const NamedInteger MQCSP_TBL[];
extern const NamedInteger MQCD_TBL[];
extern const NamedInteger MQAIR_TBL[];
extern const NamedInteger MQAIT_TBL[];
extern const NamedInteger MQOO_TBL[];
extern const NamedInteger MQOT_TBL[];
extern const NamedInteger MQOD_TBL[];
extern const NamedInteger MQPMO_V_TBL[];
extern const NamedInteger MQPMO_TBL[];
extern const NamedInteger MQPMRF_TBL[];
extern const NamedInteger MQGMO_V_TBL[];
extern const NamedInteger MQGMO_TBL[];
extern const NamedInteger MQWI_TBL[];
extern const NamedInteger MQMO_TBL[];
extern const NamedInteger MQCO_TBL[];
extern const NamedInteger MQPD_TBL[];
extern const NamedInteger MQIMPO_TBL[];
extern const NamedInteger MQCMHO_TBL[];
extern const NamedInteger MQCBT_TBL[];
extern const NamedInteger MQOP_TBL[];
extern const NamedInteger MQTYPE_TBL[];
extern const NamedInteger MQBOOL_TBL[];
extern const NamedInteger MQIA_TBL[];
extern const AttributeSelector MQCA_TBL[];
extern const NamedInteger MQDL_TBL[];
extern const NamedInteger MQQA_TBL[];
extern const NamedInteger MQTC_TBL[];
extern const NamedInteger MQTT_TBL[];

/// The output table of object attributes; ends with a row whose keyword is null.
extern const AttributeOutput prm_to_msg[];

/// The first row with exactly this name, or null. Works for every table of rows that begin with a name.
template <class Row>
const Row *findByName(const Row *table, const char *name)
{
    for (const Row *row = table; row->name != nullptr; ++row) {
        if (std::strcmp(row->name, name) == 0) return row;
    }
    return nullptr;
}
