#include "qmgr/store/message.h"

#include <cstring>

namespace mqrig::qmgr::store {

static_assert(sizeof(MessageHeader) == 424, "stored as it stands: no hidden padding, and a change is a new format");

namespace {

constexpr MQBYTE tokenMark = 'q'; // first byte of our tokens; zeros are MQMTOK_NONE

} // namespace

MessageToken tokenOfKey(const MessageKey &key)
{
    MessageToken token{tokenMark, 0, 0, key.order};
    std::memcpy(&token[4], &key.queue, sizeof key.queue);
    std::memcpy(&token[8], &key.sequence, sizeof key.sequence);
    return token;
}

std::optional<MessageKey> keyOfToken(const MessageToken &token)
{
    if (token[0] != tokenMark || token[1] != 0 || token[2] != 0) return std::nullopt;
    MessageKey key{.queue = 0, .order = token[3], .sequence = 0};
    std::memcpy(&key.queue, &token[4], sizeof key.queue);
    std::memcpy(&key.sequence, &token[8], sizeof key.sequence);
    return key;
}

} // namespace mqrig::qmgr::store
