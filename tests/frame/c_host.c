/* A plain C99 host: includes the public header, wraps its buffers, and calls
 * a drawing export through the shared library. */
#include <stdio.h>

#include "quent_dgtrend.h"

int main(void) {
    real_T conc[3] = {2.0, 1.0, 4.0}, coefficients[2] = {-500.0, 6000.0};
    real_T gridBuffer[5], curveBuffer[5];
    int32_T concSize[2] = {1, 3}, maskBuffer[2] = {7, 8};
    RealArray *grid = QUENT_emxCreateWrapper_real_T(gridBuffer, 1, 5);
    RealArray *curve = QUENT_emxCreateWrapper_real_T(curveBuffer, 1, 5);
    Int32Array *mask = QUENT_emxCreateWrapper_int32_T(maskBuffer, 1, 2);
    int ok = grid != NULL && curve != NULL && mask != NULL && !grid->canFreeData &&
             mask->data == maskBuffer && mask->allocatedSize == 2;

    /* The grid stays in the host's buffer: ends 1 and 4, the trend 6000 at 1. */
    QUENT_dGtrend_trend(conc, concSize, coefficients, 5, grid, curve);
    ok = ok && grid->data == gridBuffer && grid->size[1] == 5 && gridBuffer[0] == 1.0 &&
         gridBuffer[4] == 4.0 && curveBuffer[0] == 6000.0;
    /* A request beyond the host's buffer moves the record to library storage. */
    QUENT_dGtrend_trend(conc, concSize, coefficients, 9, grid, curve);
    ok = ok && grid->data != gridBuffer && grid->canFreeData && grid->size[1] == 9;

    /* Records go back to the library; the host's buffers stay the host's. */
    QUENT_emxDestroyArray_real_T(grid);
    QUENT_emxDestroyArray_real_T(curve);
    QUENT_emxDestroyArray_int32_T(mask);
    printf(ok ? "c_host: all checks passed\n" : "c_host: FAILED\n");
    return ok ? 0 : 1;
}
