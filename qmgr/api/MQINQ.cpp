#include <cstddef>

#include "qmgr/api/api.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/inquire.h"

using namespace mqrig::qmgr;

namespace {

constexpr MQLONG mostSelectors = 256;

struct Arrays {
    MQLONG selectorCount;
    PMQLONG selectors;
    MQLONG intAttrCount;
    PMQLONG intAttrs;
    MQLONG charAttrLength;
    PMQCHAR charAttrs;
};

MQLONG check(const Arrays &arrays)
{
    if (arrays.selectorCount < 0) return MQRC_SELECTOR_COUNT_ERROR;
    if (arrays.selectorCount > mostSelectors) return MQRC_SELECTOR_LIMIT_EXCEEDED;
    if (arrays.selectors == nullptr && arrays.selectorCount > 0) return MQRC_SELECTOR_ERROR;
    if (arrays.intAttrCount < 0) return MQRC_INT_ATTR_COUNT_ERROR;
    if (arrays.intAttrs == nullptr && arrays.intAttrCount > 0) return MQRC_INT_ATTRS_ARRAY_ERROR;
    if (arrays.charAttrLength < 0) return MQRC_CHAR_ATTR_LENGTH_ERROR;
    if (arrays.charAttrs == nullptr && arrays.charAttrLength > 0) return MQRC_CHAR_ATTRS_ERROR;
    return MQRC_NONE;
}

template <class T>
std::span<T> spanOf(T *first, MQLONG count)
{
    return {first, static_cast<std::size_t>(count)};
}

Outcome inquire(MQHCONN Hconn, MQHOBJ Hobj, const Arrays &arrays)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    core::OpenObject *object = use->handles.find(Hobj);
    if (object == nullptr) return failure(MQRC_HOBJ_ERROR);
    if (const MQLONG reason = check(arrays)) return failure(reason);
    return core::inquire(*use, *object,
                         {spanOf(arrays.selectors, arrays.selectorCount), spanOf(arrays.intAttrs, arrays.intAttrCount),
                          spanOf(arrays.charAttrs, arrays.charAttrLength)});
}

} // namespace

MQI_EXPORT void MQENTRY MQINQ(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount,
                              PMQLONG pIntAttrs, MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode,
                              PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] {
        return inquire(Hconn, Hobj, {SelectorCount, pSelectors, IntAttrCount, pIntAttrs, CharAttrLength, pCharAttrs});
    });
}
