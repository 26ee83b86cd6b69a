#include "display.h"

#include "display/print_group_fields.h"

void printMessageDescriptorExtention(const MQMDE *mde, RunParams *params)
{
    params->DataEncoding = MQENC_NATIVE;
    std::printf("*StrucId[%.4s] Version[%d] StrucLength[%d] ", mde->StrucId, mde->Version, mde->StrucLength);
    std::printf("Encoding[%d] CodedCharSetId[%d] Format[%.8s] Flags[%d] ", mde->Encoding, mde->CodedCharSetId,
                mde->Format, mde->Flags);
    print_group_fields(mde, params);
}
