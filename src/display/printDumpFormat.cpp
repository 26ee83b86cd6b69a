#include "display.h"

#include <cstdio>

void printDumpFormat(const void *data, MQLONG dataLength, MQLONG shownLength)
{
    std::printf("data length: %d", dataLength); // the dump begins with a line feed
    dumpmsg(data, shownLength);
}
