#include "qmgr/properties/text_conversion.h"

#include "qmgr/convert/character_set.h"
#include "qmgr/convert/text.h"
#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {

bool convertText(std::string_view text, const TextForm &from, const TextForm &wanted, std::string &to)
{
    if (from.ccsid == utf8Ccsid && wanted.ccsid == utf8Ccsid) {
        if (!countCharacters(text)) return false;
        to = text;
        return true;
    }
    return !convert::text(text, {from.encoding, from.ccsid}, {wanted.encoding, wanted.ccsid}, to).failed();
}

bool isKnownCharacterSet(MQLONG ccsid)
{
    return convert::findCharacterSet(ccsid) != nullptr;
}

std::size_t terminatorSize(const TextForm &form)
{
    const convert::CharacterSet *set = convert::findCharacterSet(form.ccsid);
    return set != nullptr ? set->unit() : 1;
}

} // namespace mqrig::qmgr::properties
