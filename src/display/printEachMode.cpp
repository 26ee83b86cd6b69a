#include "display.h"

#include "common.h"
#include "display/shown_length.h"

void printEachMode(const void *data, MQLONG length, MQLONG form)
{
    if (form == OutputFormRaw) {
        printRaw(data, length);
        return;
    }
    const Buffer<> text = checked_malloc(nullptr, converted_size(length), {"printEachMode"});
    if (text == nullptr) return;
    cnvrtmsg(data, text.get(), length, form);
    std::fputs(text.get(), stdout);
}
