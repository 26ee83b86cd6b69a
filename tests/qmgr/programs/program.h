/* What every program here begins with: calls that are checked, and a loud end where an answer is not the one that the
   MQI promises. C99, and C++. */
#ifndef PROGRAM_H
#define PROGRAM_H

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <cmqc.h>

static MQLONG cc = MQCC_FAILED; /* CompCode and Reason of the last call */
static MQLONG rc = MQRC_NONE;

static inline void failProgram(const char *what, int line)
{
    fprintf(stderr, "line %d: %s (CompCode %d, Reason %d)\n", line, what, (int)cc, (int)rc);
    exit(1);
}

#define CHECK(condition)                                                                                               \
    do {                                                                                                               \
        if (!(condition)) failProgram(#condition, __LINE__);                                                           \
    } while (0)
/* A call that succeeds, one that warns and one that fails. */
#define OK(call)                                                                                                       \
    do {                                                                                                               \
        call;                                                                                                          \
        if (cc != MQCC_OK || rc != MQRC_NONE) failProgram(#call, __LINE__);                                            \
    } while (0)
#define WARNS(reason, call)                                                                                            \
    do {                                                                                                               \
        call;                                                                                                          \
        if (cc != MQCC_WARNING || rc != (reason)) failProgram(#call, __LINE__);                                        \
    } while (0)
#define FAILS(reason, call)                                                                                            \
    do {                                                                                                               \
        call;                                                                                                          \
        if (cc != MQCC_FAILED || rc != (reason)) failProgram(#call, __LINE__);                                         \
    } while (0)

static inline void setName(char *field, size_t length, const char *text)
{
    const size_t given = strlen(text);
    memset(field, ' ', length);
    memcpy(field, text, given < length ? given : length);
}

/* Whether a blank-padded field holds the text. */
static inline int isName(const char *field, size_t length, const char *text)
{
    const size_t given = strlen(text);
    size_t i;
    if (given > length || memcmp(field, text, given) != 0) return 0;
    for (i = given; i < length; ++i)
        if (field[i] != ' ' && field[i] != '\0') return 0;
    return 1;
}
#define NAME(field, text) setName(field, sizeof(field), text)
#define IS_NAME(field, text) isName(field, sizeof(field), text)

static inline MQHCONN connectToQM1(void)
{
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQCHAR48 name;
    setName(name, sizeof name, "QM1");
    OK(MQCONN(name, &hconn, &cc, &rc));
    return hconn;
}

static inline MQHOBJ openQueue(MQHCONN hconn, const char *queue, MQLONG options)
{
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    MQOD od = {MQOD_DEFAULT};
    NAME(od.ObjectName, queue);
    OK(MQOPEN(hconn, &od, options, &hobj, &cc, &rc));
    return hobj;
}

static inline void putText(MQHCONN hconn, MQHOBJ hobj, const char *text)
{
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
    pmo.Options = MQPMO_NO_SYNCPOINT | MQPMO_FAIL_IF_QUIESCING;
    OK(MQPUT(hconn, hobj, &md, &pmo, (MQLONG)strlen(text), (PMQVOID)text, &cc, &rc));
}

/* The text of the next message; fails with the reason of the call. */
static inline void getText(MQHCONN hconn, MQHOBJ hobj, MQLONG options, char *text, size_t size)
{
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    MQLONG length = 0;
    gmo.Options = options;
    gmo.WaitInterval = 10000;
    MQGET(hconn, hobj, &md, &gmo, (MQLONG)size - 1, text, &length, &cc, &rc);
    text[cc == MQCC_FAILED ? 0 : length] = '\0';
}

static inline void closeAndDisconnect(MQHCONN hconn, MQHOBJ hobj)
{
    OK(MQCLOSE(hconn, &hobj, MQCO_NONE, &cc, &rc));
    CHECK(hobj == MQHO_UNUSABLE_HOBJ);
    OK(MQDISC(&hconn, &cc, &rc));
    CHECK(hconn == MQHC_UNUSABLE_HCONN);
}

#endif
