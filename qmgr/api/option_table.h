// The table of option bits: what the queue manager does with every bit of the MQI's option fields.
//
// No bit is ignored in silence. Each one is done, or accepted because it asks for nothing here (the row says why), or
// refused with its reason. A bit that no row has is not of the MQI and gets the field's own error. What two bits may
// not be given together, and which object they suit, is decided where they are used.
//
// How to build an option: change its row to Treatment::Done and do it. A test walks every constant of the headers
// and holds the table to them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "cmqc.h"

namespace mqrig::qmgr::api {

// One value for each option field.
enum class OptionField : std::uint8_t {
    Connect,             // MQCNO.Options      MQCNO_
    Open,                // Options of MQOPEN  MQOO_
    Close,               // Options of MQCLOSE MQCO_
    Put,                 // MQPMO.Options      MQPMO_
    Get,                 // MQGMO.Options      MQGMO_
    Match,               // MQGMO.MatchOptions MQMO_
    Report,              // MQMD.Report        MQRO_
    Flags,               // MQMD.MsgFlags      MQMF_
    Begin,               // MQBO.Options       MQBO_
    Callback,            // MQCBD.Options      MQCBDO_
    Control,             // MQCTLO.Options     MQCTLO_
    Subscribe,           // MQSD.Options       MQSO_
    SubscriptionRequest, // MQSRO.Options      MQSRO_
    CreateHandle,        // MQCMHO.Options     MQCMHO_
    DeleteHandle,        // MQDMHO.Options     MQDMHO_
    SetProperty,         // MQSMPO.Options     MQSMPO_
    InquireProperty,     // MQIMPO.Options     MQIMPO_
    DeleteProperty,      // MQDMPO.Options     MQDMPO_
    BufferToHandle,      // MQBMHO.Options     MQBMHO_
    HandleToBuffer,      // MQMHBO.Options     MQMHBO_
};
inline constexpr std::size_t optionFields = 20;

enum class Treatment : std::uint8_t {
    Done,
    WithoutEffect,
    Refused,
};

struct OptionRow {
    std::string_view name; // of the MQI; "_RESERVED" rows are the MQI's masks of bits without a name
    MQULONG bits = 0;      // one bit, or all that the name adds
    Treatment treatment = Treatment::Done;
    MQLONG reason = MQRC_NONE; // of a refusal
    std::string_view why;      // without effect or refused: because ...
};

std::span<const OptionRow> optionRows(OptionField field);

// The reason for bits that are in no row of the field.
MQLONG unknownBitsReason(OptionField field);

// The bits that are done or accepted, by field.
extern const std::array<MQULONG, optionFields> acceptedBits;

// MQRC_NONE, or the reason that refuses these options: unknown bits first, then the first refused row.
MQLONG refusalOf(OptionField field, MQULONG options);

// The check of the entry points: one comparison where nothing is refused.
inline MQLONG checkOptions(OptionField field, MQLONG options)
{
    const auto given = static_cast<MQULONG>(options);
    if ((given & ~acceptedBits[static_cast<std::size_t>(field)]) == 0) [[likely]]
        return MQRC_NONE;
    return refusalOf(field, given);
}

// More than one bit of a set whose members exclude each other.
constexpr bool severalOf(MQLONG options, MQLONG set)
{
    const auto chosen = static_cast<MQULONG>(options & set);
    return (chosen & (chosen - 1)) != 0;
}

} // namespace mqrig::qmgr::api
