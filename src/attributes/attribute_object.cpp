#include "attributes/attribute_object.h"

#include "mqicalls.h"

#include <cstring>

Status AttributeObject::open(MQLONG options)
{
    hobj_ = params_->ObjectHobj;
    if (hobj_ != 0) return StatusOk;
    openedHere_ = MQSeriesQOpen(hconn_, &hobj_, params_, options) == StatusOk;
    return openedHere_ ? StatusOk : StatusLocalFailure;
}

Status AttributeObject::close(Status status)
{
    if (!openedHere_) return status;
    return MQSeriesQClose(hconn_, &hobj_, params_) == StatusOk ? status : StatusLocalFailure;
}

Buffer<> element_for_each_item(RunParams *params, const char *list, const char *delimiters, std::size_t elementSize,
                               Caller caller)
{
    std::size_t items = 1;
    for (const char *at = list; (at = std::strpbrk(at, delimiters)) != nullptr; ++at)
        ++items;
    const std::size_t size = items * elementSize;
    Buffer<> elements = checked_malloc(params, size, caller);
    if (elements != nullptr) std::memset(elements.get(), 0, size);
    return elements;
}

void begin_attribute_line(RunParams *params)
{
    dsp_timestamp(params);
    std::printf("1: ");
}
