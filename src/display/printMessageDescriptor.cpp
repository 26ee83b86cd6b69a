#include "display.h"

#include "display/print_hex.h"

// An MQMD is always shown in the machine's byte order, and so are its hexadecimal fields.
void printMessageDescriptor(const MQMD1 *md, RunParams *params)
{
    params->DataEncoding = MQENC_NATIVE;
    std::printf("*StrucId[%.4s] Version[%d] ", md->StrucId, md->Version);
    if (params->DisplayForm == OutputFormHex) {
        std::printf("Report[0x");
        printMQLong2Hex(md->Report, params);
        std::printf("] ");
    } else {
        std::printf("Report[%d] ", md->Report);
    }
    std::printf("MsgType[%d] Expiry[%d] Feedback[%d] ", md->MsgType, md->Expiry, md->Feedback);
    std::printf("Encoding[%d] CodedCharSetId[%d] Format[%.8s] ", md->Encoding, md->CodedCharSetId, md->Format);
    std::printf("Priority[%d] Persistence[%d] MsgId[0x", md->Priority, md->Persistence);
    print_hex(md->MsgId);
    std::printf("] CorrelId[0x");
    print_hex(md->CorrelId);
    std::printf("] BackoutCount[%d] ReplyToQ[%.48s] ReplyToQMgr[%.48s] ", md->BackoutCount, md->ReplyToQ,
                md->ReplyToQMgr);
    std::printf("UserIdentifier[%.12s] AccountingToken[0x", md->UserIdentifier);
    print_hex(md->AccountingToken);
    std::printf("] ApplIdentityData[%.32s] PutApplType[%d] PutApplName[%.28s] ", md->ApplIdentityData, md->PutApplType,
                md->PutApplName);
    std::printf("PutDate[%.8s] PutTime[%.8s] ApplOriginData[%.4s]\n\n", md->PutDate, md->PutTime, md->ApplOriginData);
}
