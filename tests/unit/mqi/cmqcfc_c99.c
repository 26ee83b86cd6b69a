/* cmqcfc.h is the first thing that this file includes: it compiles alone, in C99, with every default initialiser. */
#include "cmqcfc.h"

#include "initialisers_in_c.h"

#define INITIALISER(structure, initialiser) static const structure of_##initialiser = {initialiser};
#include "initialisers_cmqcfc.inc"
#undef INITIALISER

#define INITIALISER(structure, initialiser) {#initialiser, &of_##initialiser, sizeof(structure)},
const struct InitialisedInC cmqcfcInC[] = {
#include "initialisers_cmqcfc.inc"
    {NULL, NULL, 0}};
#undef INITIALISER
