// Default-initialised structures as a C program sees them; one list for each header, compiled as C99.
#ifndef MQRIG_TESTS_UNIT_MQI_INITIALISERS_IN_C_H
#define MQRIG_TESTS_UNIT_MQI_INITIALISERS_IN_C_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

struct InitialisedInC {
    const char *initialiser;
    const void *bytes;
    size_t length;
};

// Each list ends with an entry whose initialiser is null.
extern const struct InitialisedInC cmqcInC[];
extern const struct InitialisedInC cmqxcInC[];
extern const struct InitialisedInC cmqcfcInC[];

#ifdef __cplusplus
}
#endif

#endif
