#include "run.h"

#include "tables.h"

#include <cstdio>

namespace {

/// One name a line, and an empty line behind the last.
template <class Row>
void printNames(const Row *table)
{
    for (const Row *row = table; row->name != nullptr; ++row)
        std::puts(row->name);
    std::puts("");
}

constexpr const NamedInteger *INTEGERS[] = {
    MQMD_TBL,  MQRO_TBL,    MQMT_TBL,   MQEI_TBL,    MQFB_TBL,   MQENC_TBL,  MQPER_TBL,  MQAT_TBL,  MQMF_TBL,
    MQOL_TBL,  MQPMO_V_TBL, MQPMO_TBL,  MQGMO_V_TBL, MQGMO_TBL,  MQWI_TBL,   MQMO_TBL,   MQOO_TBL,  MQCO_TBL,
    MQOT_TBL,  MQCNO_V_TBL, MQCNO_TBL,  MQIA_TBL,    MQPMRF_TBL, MQOD_TBL,   MQDL_TBL,   MQQA_TBL,  MQTC_TBL,
    MQTT_TBL,  MQRFH_TBL,   MQTYPE_TBL, MQPD_TBL,    MQIMPO_TBL, MQCMHO_TBL, MQCCSI_TBL, MQPRI_TBL, MQCSP_TBL,
    MQCBT_TBL, MQOP_TBL,    MQCD_TBL,   MQAIR_TBL,   MQAIT_TBL,
};

constexpr const NamedBytes *BYTE_STRINGS[] = {MQFMT_TBL, MQMI_TBL, MQCI_TBL, MQACT_TBL, MQGI_TBL};

} // namespace

void printVerbose()
{
    for (const NamedInteger *table : INTEGERS)
        printNames(table);
    for (const NamedBytes *table : BYTE_STRINGS)
        printNames(table);
    printNames(MQACTT_TBL);
    printNames(MQCA_TBL);
}
