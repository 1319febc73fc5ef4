/* A C host that calls every function of the interface, three rounds over,
 * with outputs too small so that the library grows them, and gives every
 * record back.  Under valgrind (or LeakSanitizer) nothing may stay behind. */
#include <math.h>
#include <stdio.h>
#include <string.h>

#include "quent_dgtrend.h"

enum { kCurves = 6, kPoints = 40, kAll = kCurves * kPoints };

/* Six one-transition curves at three concentrations, dG rising with ln(c). */
static void makePlate(real_T *den, real_T *sig, real_T *conc) {
    int c, i;
    for (c = 0; c < kCurves; ++c) {
        const real_T cc = c < 2 ? 1.0 : c < 4 ? 2.0 : 4.0;
        const real_T dG = 5200.0 + 650.0 * log(cc), Cm = dG / 1900.0;
        conc[c] = cc;
        for (i = 0; i < kPoints; ++i) {
            const real_T x = 8.0 * i / (kPoints - 1);
            const real_T K = exp(-(dG * (1.0 - x / Cm)) / 592.4836799999999);
            den[c * kPoints + i] = x;
            sig[c * kPoints + i] = (100.0 + 42.0 * K) / (1.0 + K) + 0.05 * sin(1.7 * i + c);
        }
    }
}

static int oneRound(const real_T *den, const real_T *sig, const real_T *conc) {
    const int32_T allSize[2] = {1, kAll}, curveSize[2] = {1, kPoints};
    const int32_T concSize[2] = {1, kCurves};
    const int32_T flagSize[2] = {1, kCurves}, rowSize[2] = {1, 24 * kCurves};
    real_T small[2], scaled[kPoints], summary[4], fitted[kPoints], fraction[kPoints];
    int32_T smallInt[2], scaledSize[2], flags[kCurves] = {1, 1, 1, 0, 1, 1};
    int32_T mask[kAll];
    int ok = 1, c;
    RealArray *rows = QUENT_emxCreateWrapper_real_T(small, 1, 2);
    RealArray *userRows = QUENT_emxCreateWrapper_real_T(small, 1, 2);
    Int32Array *pointMask = QUENT_emxCreateWrapper_int32_T(smallInt, 1, 2);
    RealArray *concOut = QUENT_emxCreateWrapper_real_T(small, 1, 1);
    RealArray *trendOut = QUENT_emxCreateWrapper_real_T(small, 1, 1);
    RealArray *deviationOut = QUENT_emxCreateWrapper_real_T(small, 1, 1);
    Int32Array *usedOut = QUENT_emxCreateWrapper_int32_T(smallInt, 1, 1);
    RealArray *grid = QUENT_emxCreateWrapper_real_T(small, 1, 2);
    RealArray *curve = QUENT_emxCreateWrapper_real_T(small, 1, 2);
    RealArray *unused = QUENT_emxCreateWrapper_real_T(small, 1, 2);

    QUENT_dGtrend_normalization(sig, curveSize, 100.0, 1.0, scaled, scaledSize);
    ok = ok && scaledSize[1] == kPoints;
    QUENT_dGtrend_primaryFit(kPoints, den, allSize, sig, allSize, conc, concSize, 2, 25.0, rows,
                             pointMask);
    ok = ok && rows->canFreeData && rows->size[1] == 24 * kCurves;
    memcpy(mask, pointMask->data, sizeof mask);
    QUENT_dGtrend_user_primaryFit(kPoints, den, allSize, sig, allSize, conc, concSize, mask,
                                  allSize, flags, flagSize, 2, 25.0, userRows);
    for (c = 0; c < kCurves; ++c) {
        const real_T *row = userRows->data + 24 * c;
        ok = ok && QUENT_dGtrend_codeText(row, 2)[0] != '\0';
        QUENT_dGtrend_evaluateRow(row, 2, den + c * kPoints, kPoints, fitted, fraction);
        ok = ok && (row[12] > 0.0) == !isnan(fitted[0]);
    }
    ok = ok && rows->data[12] > 0.0 && !(userRows->data[24 * 3 + 12] > 0.0);
    QUENT_dGtrend_calc(conc, concSize, rows->data, rowSize, flags, flagSize, 1, concOut, trendOut,
                       deviationOut, usedOut, summary);
    ok = ok && concOut->size[1] == 3 && summary[0] > 0.0;
    QUENT_dGtrend_trend(conc, concSize, summary, 50, grid, curve);
    QUENT_dGtrend_fd(conc, concSize, summary, 50, 25.0, grid, curve);
    QUENT_dGtrend_fragg(conc, concSize, summary, 50, 25.0, grid, curve);
    QUENT_dGtrend_fraggfd(conc, concSize, summary, 50, 25.0, grid, curve);
    ok = ok && grid->size[1] == 50 && QUENT_dGtrend_version()[0] != '\0';

    QUENT_emxDestroyArray_real_T(rows);
    QUENT_emxDestroyArray_real_T(userRows);
    QUENT_emxDestroyArray_int32_T(pointMask);
    QUENT_emxDestroyArray_real_T(concOut);
    QUENT_emxDestroyArray_real_T(trendOut);
    QUENT_emxDestroyArray_real_T(deviationOut);
    QUENT_emxDestroyArray_int32_T(usedOut);
    QUENT_emxDestroyArray_real_T(grid);
    QUENT_emxDestroyArray_real_T(curve);
    QUENT_emxDestroyArray_real_T(unused); /* never grown: the host's buffer stays */
    QUENT_emxDestroyArray_real_T(NULL);
    return ok;
}

int main(void) {
    static real_T den[kAll], sig[kAll];
    real_T conc[kCurves];
    int round, ok = 1;
    makePlate(den, sig, conc);
    for (round = 0; round < 3; ++round) ok = oneRound(den, sig, conc) && ok;
    printf(ok ? "release_host: all checks passed\n" : "release_host: FAILED\n");
    return ok ? 0 : 1;
}
