#include "qmgr/core/selection.h"

#include <algorithm>
#include <cstring>

namespace mqrig::qmgr::core {
namespace {

template <class Bytes>
bool isNone(const Bytes &id)
{
    return std::all_of(std::begin(id), std::end(id), [](MQBYTE byte) { return byte == 0; });
}

bool same(const MQBYTE24 &a, const MQBYTE24 &b)
{
    return std::memcmp(a, b, sizeof a) == 0;
}

} // namespace

Selection::Selection(MQLONG options, const MQMD &md, const MQBYTE16 &token)
    : options_(options), msgSeqNumber_(md.MsgSeqNumber), offset_(md.Offset)
{
    std::copy_n(md.MsgId, sizeof msgId_, msgId_);
    std::copy_n(md.CorrelId, sizeof correlId_, correlId_);
    std::copy_n(md.GroupId, sizeof groupId_, groupId_);
    std::copy_n(token, token_.size(), token_.data());
    if (isNone(msgId_)) options_ &= ~MQMO_MATCH_MSG_ID;
    if (isNone(correlId_)) options_ &= ~MQMO_MATCH_CORREL_ID;
    if (isNone(groupId_)) options_ &= ~MQMO_MATCH_GROUP_ID;
    if (isNone(token_)) options_ &= ~MQMO_MATCH_MSG_TOKEN;
}

bool Selection::matches(const store::MessageHeader &header) const
{
    if (options_ == MQMO_NONE) return true;
    const MQMD &md = header.md;
    if ((options_ & MQMO_MATCH_MSG_ID) != 0 && !same(md.MsgId, msgId_)) return false;
    if ((options_ & MQMO_MATCH_CORREL_ID) != 0 && !same(md.CorrelId, correlId_)) return false;
    if ((options_ & MQMO_MATCH_GROUP_ID) != 0 && !same(md.GroupId, groupId_)) return false;
    if ((options_ & MQMO_MATCH_MSG_SEQ_NUMBER) != 0 && md.MsgSeqNumber != msgSeqNumber_) return false;
    return (options_ & MQMO_MATCH_OFFSET) == 0 || md.Offset == offset_;
}

bool Selection::restrictToPlace(const MQMD &place, bool group)
{
    constexpr MQLONG ofPlace = MQMO_MATCH_MSG_SEQ_NUMBER | MQMO_MATCH_OFFSET;
    if ((options_ & MQMO_MATCH_MSG_SEQ_NUMBER) != 0 && msgSeqNumber_ != place.MsgSeqNumber) return false;
    if ((options_ & MQMO_MATCH_OFFSET) != 0 && offset_ != place.Offset) return false;
    options_ |= ofPlace;
    msgSeqNumber_ = place.MsgSeqNumber;
    offset_ = place.Offset;
    if (!group) return true;
    if ((options_ & MQMO_MATCH_GROUP_ID) != 0 && !same(groupId_, place.GroupId)) return false;
    options_ |= MQMO_MATCH_GROUP_ID;
    std::copy_n(place.GroupId, sizeof groupId_, groupId_);
    return true;
}

void Selection::restrictToBeginnings()
{
    options_ |= MQMO_MATCH_OFFSET;
    offset_ = 0;
}

std::optional<store::GroupPlace> Selection::place() const
{
    constexpr MQLONG all = MQMO_MATCH_GROUP_ID | MQMO_MATCH_MSG_SEQ_NUMBER | MQMO_MATCH_OFFSET;
    if ((options_ & all) != all) return std::nullopt;
    return store::GroupPlace{store::MessageId(groupId_), msgSeqNumber_, offset_};
}

std::optional<Selection::Indexed> Selection::indexed() const
{
    if ((options_ & MQMO_MATCH_MSG_ID) != 0) return Indexed{store::Index::MsgId, &msgId_};
    if ((options_ & MQMO_MATCH_CORREL_ID) != 0) return Indexed{store::Index::CorrelId, &correlId_};
    if ((options_ & MQMO_MATCH_GROUP_ID) != 0) return Indexed{store::Index::GroupId, &groupId_};
    return std::nullopt;
}

} // namespace mqrig::qmgr::core
