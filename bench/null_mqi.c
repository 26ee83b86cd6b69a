/*
 * An MQI library that does nothing and says that all went well, so that a benchmark sees the caller's own cost.
 * Handles are 1; MQGET returns an empty message, or the content of the file that NULL_MQI_BODY names.
 */
#include <cmqc.h>

#include <stdio.h>
#include <stdlib.h>

static void ok(PMQLONG pCompCode, PMQLONG pReason)
{
    *pCompCode = MQCC_OK;
    *pReason = MQRC_NONE;
}

void MQCONN(PMQCHAR pQMgrName, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)pQMgrName;
    *pHconn = 1;
    ok(pCompCode, pReason);
}

void MQCONNX(PMQCHAR pQMgrName, PMQCNO pConnectOpts, PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)pConnectOpts;
    MQCONN(pQMgrName, pHconn, pCompCode, pReason);
}

void MQDISC(PMQHCONN pHconn, PMQLONG pCompCode, PMQLONG pReason)
{
    *pHconn = MQHC_UNUSABLE_HCONN;
    ok(pCompCode, pReason);
}

void MQOPEN(MQHCONN Hconn, PMQVOID pObjDesc, MQLONG Options, PMQHOBJ pHobj, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)pObjDesc, (void)Options;
    *pHobj = 1;
    ok(pCompCode, pReason);
}

void MQCLOSE(MQHCONN Hconn, PMQHOBJ pHobj, MQLONG Options, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)Options;
    *pHobj = MQHO_UNUSABLE_HOBJ;
    ok(pCompCode, pReason);
}

void MQPUT(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
           PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)Hobj, (void)pMsgDesc, (void)pPutMsgOpts, (void)BufferLength, (void)pBuffer;
    ok(pCompCode, pReason);
}

void MQPUT1(MQHCONN Hconn, PMQVOID pObjDesc, PMQVOID pMsgDesc, PMQVOID pPutMsgOpts, MQLONG BufferLength,
            PMQVOID pBuffer, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)pObjDesc, (void)pMsgDesc, (void)pPutMsgOpts, (void)BufferLength, (void)pBuffer;
    ok(pCompCode, pReason);
}

/* As much of the file as the buffer holds; its whole length in *pDataLength. */
static void read_body(const char *file, char *buffer, MQLONG length, PMQLONG pDataLength)
{
    FILE *body = fopen(file, "rb");
    if (body == NULL) return;
    setvbuf(body, NULL, _IONBF, 0);
    if (length > 0 && fread(buffer, 1, (size_t)length, body) > 0 && fseek(body, 0, SEEK_END) == 0)
        *pDataLength = (MQLONG)ftell(body);
    fclose(body);
}

void MQGET(MQHCONN Hconn, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts, MQLONG BufferLength, PMQVOID pBuffer,
           PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason)
{
    const char *file = getenv("NULL_MQI_BODY");
    (void)Hconn, (void)Hobj, (void)pMsgDesc, (void)pGetMsgOpts;
    *pDataLength = 0;
    if (file != NULL) read_body(file, pBuffer, BufferLength, pDataLength);
    ok(pCompCode, pReason);
}

void MQINQ(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount,
           PMQLONG pIntAttrs, MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)Hobj, (void)SelectorCount, (void)pSelectors, (void)IntAttrCount, (void)pIntAttrs;
    (void)CharAttrLength, (void)pCharAttrs;
    ok(pCompCode, pReason);
}

void MQSET(MQHCONN Hconn, MQHOBJ Hobj, MQLONG SelectorCount, PMQLONG pSelectors, MQLONG IntAttrCount,
           PMQLONG pIntAttrs, MQLONG CharAttrLength, PMQCHAR pCharAttrs, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)Hobj, (void)SelectorCount, (void)pSelectors, (void)IntAttrCount, (void)pIntAttrs;
    (void)CharAttrLength, (void)pCharAttrs;
    ok(pCompCode, pReason);
}

void MQCMIT(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn;
    ok(pCompCode, pReason);
}

void MQBACK(MQHCONN Hconn, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn;
    ok(pCompCode, pReason);
}

void MQCRTMH(MQHCONN Hconn, PMQVOID pCrtMsgHOpts, PMQHMSG pHmsg, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)pCrtMsgHOpts;
    *pHmsg = 1;
    ok(pCompCode, pReason);
}

void MQDLTMH(MQHCONN Hconn, PMQHMSG pHmsg, PMQVOID pDltMsgHOpts, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)pDltMsgHOpts;
    *pHmsg = MQHM_UNUSABLE_HMSG;
    ok(pCompCode, pReason);
}

void MQSETMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pSetPropOpts, PMQVOID pName, PMQVOID pPropDesc, MQLONG Type,
             MQLONG ValueLength, PMQVOID pValue, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)Hmsg, (void)pSetPropOpts, (void)pName, (void)pPropDesc, (void)Type, (void)ValueLength;
    (void)pValue;
    ok(pCompCode, pReason);
}

void MQINQMP(MQHCONN Hconn, MQHMSG Hmsg, PMQVOID pInqPropOpts, PMQVOID pName, PMQVOID pPropDesc, PMQLONG pType,
             MQLONG ValueLength, PMQVOID pValue, PMQLONG pDataLength, PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)Hmsg, (void)pInqPropOpts, (void)pName, (void)pPropDesc, (void)pType, (void)ValueLength;
    (void)pValue;
    *pDataLength = 0;
    ok(pCompCode, pReason);
}

void MQCB(MQHCONN Hconn, MQLONG Operation, PMQVOID pCallbackDesc, MQHOBJ Hobj, PMQVOID pMsgDesc, PMQVOID pGetMsgOpts,
          PMQLONG pCompCode, PMQLONG pReason)
{
    (void)Hconn, (void)Operation, (void)pCallbackDesc, (void)Hobj, (void)pMsgDesc, (void)pGetMsgOpts;
    ok(pCompCode, pReason);
}
