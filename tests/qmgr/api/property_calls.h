// The MQI of message handles and properties in a form that reads well in tests.
#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "fixture.h"

namespace mqrig::qmgr::testing {

inline MQCHARV charv(std::string_view text, MQLONG ccsid = MQCCSI_APPL)
{
    MQCHARV value = {MQCHARV_DEFAULT};
    value.VSPtr = const_cast<char *>(text.data());
    value.VSLength = static_cast<MQLONG>(text.size());
    value.VSCCSID = ccsid;
    return value;
}

template <class Number>
std::string bytesOf(Number number)
{
    return {reinterpret_cast<const char *>(&number), sizeof number};
}

struct Inquired {
    Codes codes;
    std::string name;
    MQLONG type = -1;
    std::string value;
    MQLONG dataLength = -1;
    MQPD pd = {MQPD_DEFAULT};
    MQIMPO impo = {MQIMPO_DEFAULT};
};

class PropertyTest : public OpenQueueTest {
public:
    static Codes tryCreate(MQHCONN hconn, MQHMSG &hmsg, MQLONG options = MQCMHO_DEFAULT_VALIDATION)
    {
        MQCMHO cmho = {MQCMHO_DEFAULT};
        cmho.Options = options;
        Codes codes;
        MQCRTMH(hconn, &cmho, &hmsg, &codes.CompCode, &codes.Reason);
        return codes;
    }
    static MQHMSG create(MQHCONN hconn, MQLONG options = MQCMHO_DEFAULT_VALIDATION)
    {
        MQHMSG hmsg = MQHM_NONE;
        EXPECT_EQ(tryCreate(hconn, hmsg, options), ok);
        return hmsg;
    }
    static Codes remove(MQHCONN hconn, MQHMSG &hmsg)
    {
        MQDMHO dmho = {MQDMHO_DEFAULT};
        Codes codes;
        MQDLTMH(hconn, &hmsg, &dmho, &codes.CompCode, &codes.Reason);
        return codes;
    }

    Codes set(MQHMSG hmsg, std::string_view name, MQLONG type, std::string value, MQSMPO smpo = {MQSMPO_DEFAULT},
              MQPD pd = {MQPD_DEFAULT}) const
    {
        MQCHARV text = charv(name);
        Codes codes;
        MQSETMP(hconn, hmsg, &smpo, &text, &pd, type, static_cast<MQLONG>(value.size()), value.data(), &codes.CompCode,
                &codes.Reason);
        return codes;
    }
    Codes set(MQHMSG hmsg, std::string_view name, std::string value) const
    {
        return set(hmsg, name, MQTYPE_STRING, std::move(value));
    }

    Inquired inquire(MQHMSG hmsg, std::string_view name, MQIMPO impo = {MQIMPO_DEFAULT}, MQLONG type = MQTYPE_AS_SET,
                     std::size_t valueRoom = 65536, std::size_t nameRoom = 5000) const
    {
        Inquired inquired;
        inquired.impo = impo;
        inquired.type = type;
        inquired.value.resize(valueRoom);
        inquired.name.resize(nameRoom);
        inquired.impo.ReturnedName.VSPtr = inquired.name.data();
        inquired.impo.ReturnedName.VSBufSize = static_cast<MQLONG>(nameRoom);
        MQCHARV text = charv(name);
        MQINQMP(hconn, hmsg, &inquired.impo, &text, &inquired.pd, &inquired.type, static_cast<MQLONG>(valueRoom),
                inquired.value.data(), &inquired.dataLength, &inquired.codes.CompCode, &inquired.codes.Reason);
        const bool whole = inquired.codes.CompCode != MQCC_FAILED;
        inquired.value.resize(whole ? static_cast<std::size_t>(inquired.dataLength) : 0);
        inquired.name.resize(whole ? static_cast<std::size_t>(inquired.impo.ReturnedName.VSLength) : 0);
        return inquired;
    }
    static MQIMPO impoWith(MQLONG options)
    {
        MQIMPO impo = {MQIMPO_DEFAULT};
        impo.Options = options;
        return impo;
    }

    // "name=value" of all properties that match; numbers as text.
    std::string shown(MQHMSG hmsg, std::string_view name = "%") const
    {
        std::string all;
        for (MQLONG move = MQIMPO_INQ_FIRST;; move = MQIMPO_INQ_NEXT) {
            Inquired next = inquire(hmsg, name, impoWith(move));
            if (next.codes.CompCode == MQCC_FAILED) {
                EXPECT_EQ(next.codes, failed(MQRC_PROPERTY_NOT_AVAILABLE));
                return all;
            }
            std::string value = next.value;
            if (next.type != MQTYPE_NULL && next.type != MQTYPE_STRING)
                value = inquire(hmsg, name, impoWith(MQIMPO_INQ_PROP_UNDER_CURSOR | MQIMPO_CONVERT_TYPE), MQTYPE_STRING)
                            .value;
            all += (all.empty() ? "" : " ") + next.name + "=" + (next.type == MQTYPE_NULL ? "(null)" : value);
        }
    }

    Codes putWith(MQHMSG original, std::string_view body = "hello", MQMD md = {MQMD_DEFAULT},
                  MQHMSG created = MQHM_NONE, MQLONG action = MQACTP_NEW) const
    {
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
        pmo.Version = MQPMO_VERSION_3;
        pmo.OriginalMsgHandle = original;
        pmo.NewMsgHandle = created;
        pmo.Action = action;
        return put(hconn, q1, body, md, pmo);
    }
    Got getInto(MQHMSG hmsg, MQLONG options = MQGMO_PROPERTIES_IN_HANDLE, std::size_t room = 65536) const
    {
        MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT | options, MQGMO_VERSION_4);
        gmo.MsgHandle = hmsg;
        return get(hconn, q1, version2Md(), gmo, room);
    }
};

} // namespace mqrig::qmgr::testing
