#include "blas/level3/checkers.h"

namespace orb::check {
namespace {

// xGEMM(TRANSA, TRANSB, M, N, K, ALPHA, A, LDA, B, LDB, BETA, C, LDC)
constexpr Test kGemm[] = {
    option(1, "NTC"),
    option(2, "NTC"),
    nonneg(3),
    nonneg(4),
    nonneg(5),
    ld(8, dim_if(1, 'N', 3, 5)),
    ld(10, dim_if(2, 'N', 5, 4)),
    ld(13, dim(3)),
};

// xSYMM, xHEMM(SIDE, UPLO, M, N, ALPHA, A, LDA, B, LDB, BETA, C, LDC)
constexpr Test kSymm[] = {
    option(1, "LR"), option(2, "UL"), nonneg(3), nonneg(4), ld(7, dim_if(1, 'L', 3, 4)),
    ld(9, dim(3)),   ld(12, dim(3)),
};

// xSYRK, xHERK(UPLO, TRANS, N, K, ALPHA, A, LDA, BETA, C, LDC)
#define ORB_RANK_K(name, trans)                                                             \
  constexpr Test name[] = {                                                                 \
      option(1, "UL"), option(2, trans), nonneg(3), nonneg(4), ld(7, dim_if(2, 'N', 3, 4)), \
      ld(10, dim(3)),                                                                       \
  };
ORB_RANK_K(kSsyrkTests, "NTC")
ORB_RANK_K(kCsyrkTests, "NT")
ORB_RANK_K(kCherkTests, "NC")
#undef ORB_RANK_K

// xSYR2K, xHER2K(UPLO, TRANS, N, K, ALPHA, A, LDA, B, LDB, BETA, C, LDC)
#define ORB_RANK_2K(name, trans)   \
  constexpr Test name[] = {        \
      option(1, "UL"),             \
      option(2, trans),            \
      nonneg(3),                   \
      nonneg(4),                   \
      ld(7, dim_if(2, 'N', 3, 4)), \
      ld(9, dim_if(2, 'N', 3, 4)), \
      ld(12, dim(3)),              \
  };
ORB_RANK_2K(kSsyr2kTests, "NTC")
ORB_RANK_2K(kCsyr2kTests, "NT")
ORB_RANK_2K(kCher2kTests, "NC")
#undef ORB_RANK_2K

// xTRMM, xTRSM(SIDE, UPLO, TRANSA, DIAG, M, N, ALPHA, A, LDA, B, LDB)
constexpr Test kTriangular[] = {
    option(1, "LR"),
    option(2, "UL"),
    option(3, "NTC"),
    option(4, "UN"),
    nonneg(5),
    nonneg(6),
    ld(9, dim_if(1, 'L', 5, 6)),
    ld(11, dim(5)),
};

}  // namespace

const Checker kSgemm = checker("SGEMM ", kGemm);
const Checker kDgemm = checker("DGEMM ", kGemm);
const Checker kCgemm = checker("CGEMM ", kGemm);
const Checker kZgemm = checker("ZGEMM ", kGemm);

const Checker kSsymm = checker("SSYMM ", kSymm);
const Checker kCsymm = checker("CSYMM ", kSymm);
const Checker kChemm = checker("CHEMM ", kSymm);
const Checker kSsyrk = checker("SSYRK ", kSsyrkTests);
const Checker kCsyrk = checker("CSYRK ", kCsyrkTests);
const Checker kCherk = checker("CHERK ", kCherkTests);
const Checker kSsyr2k = checker("SSYR2K", kSsyr2kTests);
const Checker kCsyr2k = checker("CSYR2K", kCsyr2kTests);
const Checker kCher2k = checker("CHER2K", kCher2kTests);
const Checker kStrmm = checker("STRMM ", kTriangular);
const Checker kCtrmm = checker("CTRMM ", kTriangular);
const Checker kStrsm = checker("STRSM ", kTriangular);
const Checker kCtrsm = checker("CTRSM ", kTriangular);
const Checker kDtrsm = checker("DTRSM ", kTriangular);
const Checker kZtrsm = checker("ZTRSM ", kTriangular);

}  // namespace orb::check
