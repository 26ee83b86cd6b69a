// How rows of a status table are made: like those of the attribute table, but shown only.
#pragma once

#include <limits>
#include <span>
#include <string_view>

#include "cmqc.h"
#include "qmgr/objects/attribute.h"

namespace mqrig::qmgr::command {

// As hexadecimal text.
constexpr MQLONG connectionIdDigits = 2 * MQ_CONNECTION_ID_LENGTH;

constexpr objects::Attribute statusNumber(std::string_view keyword, MQLONG selector, objects::ObjectKind kind,
                                          std::span<const objects::Word> words = {},
                                          objects::Access access = objects::Access::Dynamic)
{
    return {.keyword = keyword,
            .selector = selector,
            .kinds = objects::kinds(kind),
            .value = objects::ValueKind::Number,
            .access = access,
            .high = std::numeric_limits<MQLONG>::max(),
            .words = words,
            .defaultText = {}};
}

constexpr objects::Attribute statusText(std::string_view keyword, MQLONG selector, objects::ObjectKind kind,
                                        MQLONG length, objects::Access access = objects::Access::Dynamic)
{
    return {.keyword = keyword,
            .selector = selector,
            .kinds = objects::kinds(kind),
            .value = objects::ValueKind::Text,
            .access = access,
            .words = {},
            .textLength = length,
            .defaultText = {}};
}

} // namespace mqrig::qmgr::command
