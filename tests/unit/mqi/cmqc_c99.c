/* cmqc.h is the first thing that this file includes: it compiles alone, in C99, with every default initialiser. */
#include "cmqc.h"

#include "initialisers_in_c.h"

#define INITIALISER(structure, initialiser) static const structure of_##initialiser = {initialiser};
#include "initialisers_cmqc.inc"
#undef INITIALISER

#define INITIALISER(structure, initialiser) {#initialiser, &of_##initialiser, sizeof(structure)},
const struct InitialisedInC cmqcInC[] = {
#include "initialisers_cmqc.inc"
    {NULL, NULL, 0}};
#undef INITIALISER
