// Message context: who a message comes from (identity) and where it was put (origin).
//
// MQPUT writes it into the message in one of six ways, chosen by MQPMO.Options; MQGET on a handle opened with
// MQOO_SAVE_ALL_CONTEXT keeps it for a later MQPUT that passes it on.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "cmqc.h"
#include "qmgr/core/process_identity.h"
#include "qmgr/core/put_clock.h"

namespace mqrig::qmgr::core {

// The context fields of an MQMD, in its order.
struct IdentityContext {
    MQCHAR12 UserIdentifier;
    MQBYTE32 AccountingToken;
    MQCHAR32 ApplIdentityData;
};
struct OriginContext {
    MQLONG PutApplType;
    MQCHAR28 PutApplName;
    MQCHAR8 PutDate;
    MQCHAR8 PutTime;
    MQCHAR4 ApplOriginData;
};
struct MessageContext {
    IdentityContext identity;
    OriginContext origin;
};

// What a handle keeps of a message: its context, and its properties of the user context (MQPD_USER_CONTEXT) as they are
// stored (properties/record.h).
struct SavedContext {
    MessageContext fields;
    std::vector<std::byte> properties;
};

MessageContext contextOf(const MQMD &md);
void setIdentity(MQMD &md, const IdentityContext &identity);
void setOrigin(MQMD &md, const OriginContext &origin);

// What the queue manager writes where the program sets nothing.
void setDefaultIdentity(MQMD &md, const ProcessIdentity &process);
void setDefaultOrigin(MQMD &md, const ProcessIdentity &process, PutClock &clock, std::int64_t putTime);
// MQPMO_NO_CONTEXT: blanks and zeros.
void setNoContext(MQMD &md);
// Context that the program set itself: its texts are stored blank-padded, as every field of a message.
void padIdentity(MQMD &md);
void padOrigin(MQMD &md);

// Blanks from the first zero to the end of the field.
void padField(char *field, std::size_t length);
template <std::size_t N>
void padField(char (&field)[N])
{
    padField(field, N);
}

} // namespace mqrig::qmgr::core
