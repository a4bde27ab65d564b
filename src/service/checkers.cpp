#include "service/checkers.h"

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

}  // namespace

const Checker kSgemm = checker("SGEMM ", kGemm);
const Checker kDgemm = checker("DGEMM ", kGemm);
const Checker kCgemm = checker("CGEMM ", kGemm);
const Checker kZgemm = checker("ZGEMM ", kGemm);

}  // namespace orb::check
