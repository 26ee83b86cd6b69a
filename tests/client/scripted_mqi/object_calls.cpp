// The calls on objects: open, close, attributes, subscriptions.
#include "library.h"
#include "object_descriptor.h"

#include <algorithm>
#include <cstring>

using scripted::Call;
using scripted::library;

namespace {

std::string listed(const MQLONG *numbers, MQLONG count)
{
    std::string text;
    for (MQLONG i = 0; i < count; ++i) {
        text += (i == 0 ? "" : ",") + std::to_string(numbers[i]);
    }
    return text;
}

// The checks that MQINQ and MQSET share; false when the arrays must not be touched.
bool readSelectors(Call &call, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount, PMQLONG pIntAttrs,
                   MQLONG CharAttrLength, PMQCHAR pCharAttrs)
{
    call.note("SelectorCount", SelectorCount);
    call.note("IntAttrCount", IntAttrCount);
    call.note("CharAttrLength", CharAttrLength);
    if (SelectorCount < 0 || SelectorCount > 256) call.refuse(MQRC_SELECTOR_COUNT_ERROR);
    else if (IntAttrCount < 0) call.refuse(MQRC_INT_ATTR_COUNT_ERROR);
    else if (IntAttrCount > 0 && pIntAttrs == nullptr) call.refuse(MQRC_INT_ATTRS_ARRAY_ERROR);
    else if (CharAttrLength < 0) call.refuse(MQRC_CHAR_ATTR_LENGTH_ERROR);
    else if (CharAttrLength > 0 && pCharAttrs == nullptr) call.refuse(MQRC_CHAR_ATTRS_ERROR);
    else {
        call.note("Selectors", listed(pSelectors, SelectorCount));
        const auto isInteger = [](MQLONG selector) { return selector >= MQIA_FIRST && selector <= MQIA_LAST; };
        if (std::count_if(pSelectors, pSelectors + SelectorCount, isInteger) > IntAttrCount) {
            call.refuse(MQRC_INT_ATTR_COUNT_TOO_SMALL);
        }
        return true;
    }
    return false;
}

} // namespace

void MQOPEN(MQHCONN Hconn, PMQVOID pObjDesc, MQLONG Options, PMQHOBJ pHobj, PMQLONG pCompCode,
            PMQLONG pReason) noexcept
{
    Call call("MQOPEN", pCompCode, pReason);
    if (call.isNull()) {
        *pHobj = 1;
        return;
    }
    call.connection(Hconn);
    call.noteBits("Options", Options);
    auto *od = static_cast<MQOD *>(pObjDesc);
    const bool readable = readObjectDescriptor(call, od);
    call.decide();
    *pHobj = call.succeeded() ? call.newHandle(library().nextObject) : MQHO_UNUSABLE_HOBJ;
    if (call.succeeded()) call.connectionState()->objects.insert(*pHobj);
    if (readable) {
        call.writeBack("MQOD", od);
        if (od->Version >= MQOD_VERSION_2) {
            writeResponses(call, static_cast<MQRR *>(od->ResponseRecPtr), od->RecsPresent);
        }
    }
    call.finish();
}

void MQCLOSE(MQHCONN Hconn, PMQHOBJ pHobj, MQLONG Options, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQCLOSE", pCompCode, pReason);
    if (call.isNull()) {
        *pHobj = MQHO_UNUSABLE_HOBJ;
        return;
    }
    call.connection(Hconn);
    call.object(*pHobj);
    call.noteBits("Options", Options);
    call.decide();
    if (call.succeeded()) {
        call.connectionState()->objects.erase(*pHobj);
        *pHobj = MQHO_UNUSABLE_HOBJ;
    }
    call.finish();
}

void MQINQ(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount,
           PMQLONG pIntAttrs, MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQINQ", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.object(Hobj);
    const bool readable =
        readSelectors(call, SelectorCount, pSelectors, IntAttrCount, pIntAttrs, CharAttrLength, pCharAttrs);
    call.decide();
    if (readable && call.succeeded()) {
        const auto &integers = call.answer().integers;
        for (MQLONG i = 0; i < IntAttrCount; ++i) {
            const auto index = static_cast<std::size_t>(i);
            pIntAttrs[i] = index < integers.size() ? integers[index] : 0;
        }
        // The script gives each text in the full length of its attribute, or the last one short.
        std::string texts;
        for (const std::string &text : call.answer().texts) {
            texts += text;
        }
        texts.resize(static_cast<std::size_t>(CharAttrLength), ' ');
        if (!texts.empty()) std::memcpy(pCharAttrs, texts.data(), texts.size());
    }
    call.finish();
}

void MQSET(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount,
           PMQLONG pIntAttrs, MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQSET", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.object(Hobj);
    if (readSelectors(call, SelectorCount, pSelectors, IntAttrCount, pIntAttrs, CharAttrLength, pCharAttrs)) {
        call.note("IntAttrs", listed(pIntAttrs, IntAttrCount));
        call.noteBytes("CharAttrs", pCharAttrs, CharAttrLength);
    }
    call.decide();
    call.finish();
}

void MQSUB(MQHCONN Hconn, PMQVOID pSubDesc, PMQHOBJ pHobj, PMQHOBJ pHsub, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    Call call("MQSUB", pCompCode, pReason);
    if (call.isNull()) {
        *pHobj = *pHsub = 1;
        return;
    }
    call.connection(Hconn);
    call.note("Hobj", *pHobj);
    call.structure("MQSD", pSubDesc);
    call.decide();
    if (call.succeeded()) {
        auto &objects = call.connectionState()->objects;
        *pHsub = call.newHandle(library().nextObject);
        objects.insert(*pHsub);
        if (!objects.contains(*pHobj)) objects.insert(*pHobj = library().nextObject++);
        call.writeBack("MQSD", pSubDesc);
    }
    call.finish();
}

void MQSUBRQ(MQHCONN Hconn, MQHOBJ Hsub, MQLONG Action, PMQVOID pSubRqOpts, PMQLONG pCompCode,
             PMQLONG pReason) noexcept
{
    Call call("MQSUBRQ", pCompCode, pReason);
    if (call.isNull()) return;
    call.connection(Hconn);
    call.object(Hsub);
    call.note("Action", Action);
    call.structure("MQSRO", pSubRqOpts);
    call.decide();
    call.finish();
}
