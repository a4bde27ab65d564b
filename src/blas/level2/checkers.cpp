#include "blas/level2/checkers.h"

namespace orb::check {
namespace {

// xGEMV(TRANS, M, N, ALPHA, A, LDA, X, INCX, BETA, Y, INCY)
constexpr Test kGemv[] = {
    option(1, "NTC"), nonneg(2), nonneg(3), ld(6, dim(2)), nonzero(8), nonzero(11),
};

// xGER, xGERU, xGERC(M, N, ALPHA, X, INCX, Y, INCY, A, LDA)
constexpr Test kGer[] = {
    nonneg(1), nonneg(2), nonzero(5), nonzero(7), ld(9, dim(1)),
};

// xSYMV, xHEMV(UPLO, N, ALPHA, A, LDA, X, INCX, BETA, Y, INCY)
constexpr Test kSymv[] = {
    option(1, "UL"), nonneg(2), ld(5, dim(2)), nonzero(7), nonzero(10),
};

// xSYR, xHER(UPLO, N, ALPHA, X, INCX, A, LDA)
constexpr Test kSyr[] = {
    option(1, "UL"),
    nonneg(2),
    nonzero(5),
    ld(7, dim(2)),
};

// xSYR2, xHER2(UPLO, N, ALPHA, X, INCX, Y, INCY, A, LDA)
constexpr Test kSyr2[] = {
    option(1, "UL"), nonneg(2), nonzero(5), nonzero(7), ld(9, dim(2)),
};

// xTRMV, xTRSV(UPLO, TRANS, DIAG, N, A, LDA, X, INCX)
constexpr Test kTrxv[] = {
    option(1, "UL"), option(2, "NTC"), option(3, "UN"), nonneg(4), ld(6, dim(4)), nonzero(8),
};

}  // namespace

const Checker kSgemv = checker("SGEMV ", kGemv);
const Checker kDgemv = checker("DGEMV ", kGemv);
const Checker kCgemv = checker("CGEMV ", kGemv);
const Checker kZgemv = checker("ZGEMV ", kGemv);

const Checker kSger = checker("SGER  ", kGer);
const Checker kDger = checker("DGER  ", kGer);
const Checker kCgerc = checker("CGERC ", kGer);
const Checker kCgeru = checker("CGERU ", kGer);
const Checker kZgerc = checker("ZGERC ", kGer);
const Checker kZgeru = checker("ZGERU ", kGer);

const Checker kSsymv = checker("SSYMV ", kSymv);
const Checker kChemv = checker("CHEMV ", kSymv);

const Checker kSsyr = checker("SSYR  ", kSyr);
const Checker kDsyr = checker("DSYR  ", kSyr);
const Checker kCher = checker("CHER  ", kSyr);
const Checker kZher = checker("ZHER  ", kSyr);
const Checker kZsyr = checker("ZSYR  ", kSyr);

const Checker kSsyr2 = checker("SSYR2 ", kSyr2);
const Checker kCher2 = checker("CHER2 ", kSyr2);

const Checker kStrmv = checker("STRMV ", kTrxv);
const Checker kCtrmv = checker("CTRMV ", kTrxv);
const Checker kStrsv = checker("STRSV ", kTrxv);
const Checker kCtrsv = checker("CTRSV ", kTrxv);

}  // namespace orb::check
