#include "mqicalls.h"

#include "common.h"
#include "mqicalls/mqi_call.h"
#include "mqicalls/object_of_record.h"

Status MQSeriesInquiry(MQHCONN hconn, MQHOBJ hobj, RunParams *params, MQLONG selectorCount, MQLONG *selectors,
                       MQLONG intAttrCount, MQLONG *intAttrs, MQLONG charAttrLength, MQCHAR *charAttrs)
{
    const MqiCodes codes = mqi_call(
        params, "MQINQ",
        [&] {
            api_trace_dsp(params, "MQINQ start hcon:%d Selector count:%d IntAttrCount:%d\n", hconn, selectorCount,
                          intAttrCount);
        },
        [&](MqiCodes &made) {
            MQINQ(hconn, hobj, selectorCount, selectors, intAttrCount, intAttrs, charAttrLength, charAttrs,
                  &made.CompCode, &made.Reason);
        },
        [&](const MqiCodes &made) {
            api_trace_dsp(params, "MQINQ stop hcon:%d CompCd=%02d ReasonCd=%02d\n", hconn, made.CompCode, made.Reason);
        });

    if (codes.Reason == MQRC_NONE && codes.CompCode != MQCC_FAILED) return StatusOk;
    printf_te(params, "MQINQ fail : %s %s CompCd=%02d ReasonCd=%02d\n", shown_name(params->QMgrName),
              object_of_record(params).name, codes.CompCode, codes.Reason);
    return StatusMqiFailure;
}
