// Which messages a MQGET will have: MQGMO.MatchOptions with the fields that they name.
#pragma once

#include <array>
#include <optional>

#include "cmqc.h"
#include "qmgr/store/message.h"
#include "qmgr/store/transaction.h"

namespace mqrig::qmgr::core {

class Selection {
public:
    // Any message.
    Selection() = default;
    // `options`: MQMO_. `md`: version 2. The values MQMI_NONE, MQCI_NONE, MQGI_NONE and MQMTOK_NONE match anything.
    Selection(MQLONG options, const MQMD &md, const MQBYTE16 &token);

    bool matches(const store::MessageHeader &header) const;

    // From now on only messages with the MsgSeqNumber and Offset of this descriptor are wanted, and with `group` only
    // those with its GroupId. False if what was wanted before contradicts.
    [[nodiscard]] bool restrictToPlace(const MQMD &place, bool group);
    // From now on only messages that begin a logical message are wanted, whatever was wanted of Offset.
    void restrictToBeginnings();
    bool wantsIdentifiers() const { return (options_ & (MQMO_MATCH_MSG_ID | MQMO_MATCH_CORREL_ID)) != 0; }

    // The index that holds all messages of this selection, if one of the identifiers is wanted.
    struct Indexed {
        store::Index index;
        const MQBYTE24 *id;
    };
    std::optional<Indexed> indexed() const;
    // The place in a group that holds all of them, if all that makes up a place is wanted.
    std::optional<store::GroupPlace> place() const;

    // A token names one message; a token that no message can have names none.
    bool byToken() const { return (options_ & MQMO_MATCH_MSG_TOKEN) != 0; }
    std::optional<store::MessageKey> tokenKey() const { return store::keyOfToken(token_); }

private:
    MQLONG options_ = MQMO_NONE; // those that select anything
    MQBYTE24 msgId_{};
    MQBYTE24 correlId_{};
    MQBYTE24 groupId_{};
    MQLONG msgSeqNumber_ = 0;
    MQLONG offset_ = 0;
    store::MessageToken token_{};
};

} // namespace mqrig::qmgr::core
