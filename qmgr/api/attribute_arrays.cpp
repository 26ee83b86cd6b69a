#include "qmgr/api/attribute_arrays.h"

namespace mqrig::qmgr::api {
namespace {

constexpr MQLONG mostSelectors = 256;

} // namespace

MQLONG checkArrays(const AttributeArrays &arrays)
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

} // namespace mqrig::qmgr::api
