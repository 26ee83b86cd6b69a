// Every value of the table of values, given to the queue manager.
#include "tests/qmgr/conformance/values.h"

#include <functional>
#include <map>
#include <string>

#include "every_call.h"
#include "property_calls.h"

namespace mqrig::qmgr::testing {
namespace {

using conformance::Treatment;
using conformance::ValueField;
using conformance::ValueRow;

void MQENTRY ignore(MQHCONN /*hconn*/, PMQVOID /*md*/, PMQVOID /*gmo*/, PMQVOID /*buffer*/, PMQCBC /*context*/) {}

class Values : public PropertyTest {
public:
    // The reason that a call answers where the field has the value, by field.
    std::map<std::string_view, std::function<MQLONG(MQLONG)>> answers{
        {"MQMD.MsgType",
         [this](MQLONG value) {
             MQMD md = {MQMD_DEFAULT};
             md.MsgType = value;
             setText(md.ReplyToQ, "Q1");
             return put(hconn, q1, "x", md).Reason;
         }},
        {"MQMD.Persistence",
         [this](MQLONG value) {
             MQMD md = {MQMD_DEFAULT};
             md.Persistence = value;
             return put(hconn, q1, "x", md).Reason;
         }},
        {"MQMD.Priority", [this](MQLONG value) { return put(hconn, q1, "x", withPriority(value)).Reason; }},
        {"MQSD.PubPriority",
         [this](MQLONG value) {
             MQSD sd = subscriptionToFruit();
             sd.PubPriority = value;
             MQHOBJ queue = MQHO_NONE;
             MQHOBJ hsub = MQHO_NONE;
             return answerOf(MQSUB, hconn, &sd, &queue, &hsub).Reason;
         }},
        {"MQPMO.Action",
         [this](MQLONG value) { return putWith(create(hconn), "x", {MQMD_DEFAULT}, MQHM_NONE, value).Reason; }},
        {"MQPMO.PutMsgRecFields", [this](MQLONG value) { return putToList(value); }},
        {"MQOD.ObjectType",
         [this](MQLONG value) {
             MQOD od = {MQOD_DEFAULT};
             od.ObjectType = value;
             MQHOBJ hobj = MQHO_NONE;
             return tryOpen(hconn, od, value == MQOT_TOPIC ? MQOO_OUTPUT : MQOO_INQUIRE, hobj).Reason;
         }},
        {"MQCBD.CallbackType",
         [this](MQLONG value) {
             MQCBD cbd = consumer();
             cbd.CallbackType = value;
             return registered(cbd, MQOP_REGISTER).Reason;
         }},
        {"Operation of MQCB", [this](MQLONG value) { return registered(consumer(), value).Reason; }},
        {"Operation of MQCTL",
         [this](MQLONG value) {
             const MQLONG reason = answerOf(MQCTL, hconn, value, nullptr).Reason;
             answerOf(MQCTL, hconn, MQOP_STOP, nullptr);
             return reason;
         }},
        {"Type of MQSETMP",
         [this](MQLONG value) {
             const std::size_t length = value == MQTYPE_NULL || value == MQTYPE_STRING ? 0 : valueLength(value);
             return set(create(hconn), "name", value, std::string(length, '\0')).Reason;
         }},
        {"MQPD.Support", [this](MQLONG value) { return setDescribed(&MQPD::Support, value); }},
        {"MQPD.Context", [this](MQLONG value) { return setDescribed(&MQPD::Context, value); }},
        {"MQPD.CopyOptions", [this](MQLONG value) { return setDescribed(&MQPD::CopyOptions, value); }},
        {"Type of MQSTAT",
         [this](MQLONG value) {
             MQSTS sts = {MQSTS_DEFAULT};
             return answerOf(MQSTAT, hconn, value, &sts).Reason;
         }},
        {"Action of MQSUBRQ",
         [this](MQLONG value) {
             MQSD sd = subscriptionToFruit();
             MQSRO sro = {MQSRO_DEFAULT};
             MQHOBJ queue = MQHO_NONE;
             MQHOBJ hsub = MQHO_NONE;
             EXPECT_EQ(answerOf(MQSUB, hconn, &sd, &queue, &hsub), ok);
             return answerOf(MQSUBRQ, hconn, hsub, value, &sro).Reason;
         }},
        {"MQCSP.AuthenticationType",
         [](MQLONG value) {
             MQCSP csp = {MQCSP_DEFAULT};
             csp.AuthenticationType = value;
             MQCNO cno = {MQCNO_DEFAULT};
             cno.Version = MQCNO_VERSION_5;
             cno.SecurityParmsPtr = &csp;
             MQHCONN other = MQHC_UNUSABLE_HCONN;
             return tryConnectX("QM1", cno, other).Reason;
         }},
    };

private:
    static MQSD subscriptionToFruit()
    {
        MQSD sd = {MQSD_DEFAULT};
        sd.Options = MQSO_CREATE | MQSO_MANAGED;
        sd.ObjectString = charv("fruit");
        return sd;
    }
    static MQCBD consumer()
    {
        MQCBD cbd = {MQCBD_DEFAULT};
        cbd.CallbackFunction = reinterpret_cast<MQPTR>(&ignore);
        return cbd;
    }
    Codes registered(MQCBD cbd, MQLONG operation) const
    {
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT);
        return answerOf(MQCB, hconn, operation, &cbd, q1, &md, &gmo);
    }
    static std::size_t valueLength(MQLONG type)
    {
        switch (type) {
        case MQTYPE_INT8:
            return 1;
        case MQTYPE_INT16:
            return 2;
        case MQTYPE_INT64:
        case MQTYPE_FLOAT64:
            return 8;
        default:
            return 4;
        }
    }
    MQLONG setDescribed(MQLONG MQPD::*field, MQLONG value) const
    {
        MQPD pd = {MQPD_DEFAULT};
        pd.*field = value;
        return set(create(hconn), "name", MQTYPE_STRING, "x", {MQSMPO_DEFAULT}, pd).Reason;
    }
    MQLONG putToList(MQLONG fields) const
    {
        MQOR names[1] = {{MQOR_DEFAULT}};
        setText(names[0].ObjectName, "Q1");
        char records[200] = {};
        MQOD od = {MQOD_DEFAULT};
        od.Version = MQOD_VERSION_2;
        od.RecsPresent = 1;
        od.ObjectRecPtr = names;
        MQMD md = version2Md();
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT | MQPMO_SET_IDENTITY_CONTEXT);
        pmo.Version = MQPMO_VERSION_2;
        pmo.RecsPresent = 1;
        pmo.PutMsgRecFields = fields;
        pmo.PutMsgRecPtr = records;
        return answerOf(MQPUT1, hconn, &od, &md, &pmo, 0, nullptr).Reason;
    }
};

TEST_F(Values, AreTakenOrRefusedAsTheTableSays)
{
    for (const ValueField &field : conformance::valueFields()) {
        ASSERT_TRUE(answers.contains(field.name)) << field.name;
        for (const ValueRow &row : conformance::valueRows()) {
            if (row.field != field.name) continue;
            const MQLONG reason = answers.at(field.name)(row.value);
            if (row.treatment == Treatment::Refused)
                EXPECT_EQ(reason, field.refusal) << row.field << ' ' << row.name;
            else if (field.refusal != MQRC_NONE)
                EXPECT_NE(reason, field.refusal) << row.field << ' ' << row.name;
            else
                EXPECT_EQ(reason, MQRC_NONE) << row.field << ' ' << row.name;
        }
        EXPECT_EQ(answers.at(field.name)(-4711), field.refusal) << field.name;
    }
}

} // namespace
} // namespace mqrig::qmgr::testing
