#include "pcf.h"

#include <cstdlib>

void free_pcf_params(PcfDef *pcfDef)
{
    while (PcfParamNode *const node = pcfDef->Params) {
        pcfDef->Params = node->next;
        std::free(node->structure);
        std::free(node);
    }
}
