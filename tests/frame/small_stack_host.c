/* A host linked to the library at build time starts a thread with a 64 KiB
 * stack, as instrument software with many worker threads does, and fits a
 * small plate on it.  The library's thread storage comes off every thread's
 * stack; were it large, the thread could not even be created. */
#include <math.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>

#include "quent_dgtrend.h"

#define CURVES 2
#define POINTS 30

struct Job {
    int fitted;
};

static void *fitPlate(void *arg) {
    struct Job *job = (struct Job *)arg;
    real_T denaturant[CURVES * POINTS], signal[CURVES * POINTS], conc[CURVES] = {1.0, 2.0};
    int32_T curveSize[2] = {1, CURVES * POINTS}, concSize[2] = {1, CURVES};
    const real_T RT = 1.987 * (25.0 + 273.15);
    int c, i;
    for (c = 0; c < CURVES; ++c)
        for (i = 0; i < POINTS; ++i) {
            const real_T x = 6.0 * i / (POINTS - 1);
            const real_T k = exp(-(6000.0 - 2000.0 * x) / RT);
            denaturant[c * POINTS + i] = x;
            signal[c * POINTS + i] = 10.0 - 0.1 * x + (4.0 - 10.0) * k / (1.0 + k);
        }
    real_T rowBuffer[24 * CURVES];
    int32_T maskBuffer[CURVES * POINTS];
    RealArray *rows = QUENT_emxCreateWrapper_real_T(rowBuffer, 1, 24 * CURVES);
    Int32Array *mask = QUENT_emxCreateWrapper_int32_T(maskBuffer, 1, CURVES * POINTS);
    if (rows == NULL || mask == NULL) return NULL;
    QUENT_dGtrend_primaryFit(POINTS, denaturant, curveSize, signal, curveSize, conc, concSize,
                             2, 25.0, rows, mask);
    /* Column 13 (1-based) holds RT: positive for a fitted row. */
    job->fitted = rows->size[1] == 24 * CURVES && rows->data[12] > 0.0 && rows->data[36] > 0.0;
    free(rows->size); free(rows);
    free(mask->size); free(mask);
    return NULL;
}

int main(void) {
    struct Job job = {0};
    pthread_attr_t attr;
    pthread_t thread;
    int created;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, 64 * 1024);
    created = pthread_create(&thread, &attr, fitPlate, &job);
    pthread_attr_destroy(&attr);
    if (created != 0) {
        printf("small_stack_host: a 64 KiB thread could not be created (error %d)\n", created);
        return 1;
    }
    pthread_join(thread, NULL);
    printf(job.fitted ? "small_stack_host: fitted on a 64 KiB stack\n"
                      : "small_stack_host: FAILED, the rows were not fitted\n");
    return job.fitted ? 0 : 1;
}
