/* A plain C99 host: includes the public header, wraps its buffers, and calls
 * the drawing exports through the shared library. */
#include <stdio.h>
#include <stdlib.h>

#include "quent_dgtrend.h"

static int failures = 0;

static void check(int ok, const char *what) {
    if (!ok) {
        fprintf(stderr, "FAILED: %s\n", what);
        ++failures;
    }
}

int main(void) {
    real_T conc[3] = {2.0, 1.0, 4.0};
    int32_T concSize[2] = {1, 3};
    real_T coefficients[2] = {-500.0, 6000.0};
    real_T gridBuffer[5], curveBuffer[5];
    RealArray *grid, *curve;
    int32_T maskBuffer[2] = {7, 8};
    Int32Array *mask;

    grid = QUENT_emxCreateWrapper_real_T(gridBuffer, 1, 5);
    curve = QUENT_emxCreateWrapper_real_T(curveBuffer, 1, 5);
    check(grid != NULL && curve != NULL && !grid->canFreeData, "wrapper");
    QUENT_dGtrend_trend(conc, concSize, coefficients, 5, grid, curve);
    check(grid->data == gridBuffer && grid->size[1] == 5, "grid stays in the host buffer");
    check(gridBuffer[0] == 1.0 && gridBuffer[4] == 4.0, "grid ends");
    check(curveBuffer[0] == 6000.0, "trend at concentration 1");

    QUENT_dGtrend_fd(conc, concSize, coefficients, 5, 25.0, grid, curve);
    check(curve->data[0] > 0.0 && curve->data[0] < 1.0, "fraction unfolded");

    /* A request beyond the host's buffer moves the record to library storage. */
    QUENT_dGtrend_trend(conc, concSize, coefficients, 9, grid, curve);
    check(grid->data != gridBuffer && grid->canFreeData && grid->size[1] == 9, "growth");

    mask = QUENT_emxCreateWrapper_int32_T(maskBuffer, 1, 2);
    check(mask != NULL && mask->data == maskBuffer && mask->allocatedSize == 2, "int32 wrapper");

    /* The host frees what it was given, with the same allocator. */
    if (grid->canFreeData) free(grid->data);
    if (curve->canFreeData) free(curve->data);
    free(grid->size); free(grid);
    free(curve->size); free(curve);
    free(mask->size); free(mask);

    if (failures == 0) printf("c_host: all checks passed\n");
    return failures == 0 ? 0 : 1;
}
