#include "display.h"

#include "display/print_hex.h"

void printMessageNumber(const RunParams *params, MQLONG number)
{
    std::printf("message number: %d", number);
    if (params->Gmo.Version > MQGMO_VERSION_2) {
        std::printf(" MsgToken[0x");
        print_hex(params->Gmo.MsgToken);
        std::putchar(']');
    }
    std::putchar('\n');
}
