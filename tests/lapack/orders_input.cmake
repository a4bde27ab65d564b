# orb_lapack_orders_input(SOURCE PREFIX OUT): a copy of a linear-equation
# tester's input (stest.in, ctest.in) that keeps only the paths of the
# factorizations with threaded or blocked forms (general, band, triangular,
# positive definite full and band, symmetric and Hermitian indefinite, QR,
# LQ and least squares) and takes orders up to the programs' limit of 132,
# so that the blocked and threaded codes (above order 64) are what the
# program checks. PREFIX is the path letter (S, C, D, Z).
function(orb_lapack_orders_input source prefix out)
  file(STRINGS ${source} lines)
  set(text "")
  set(i 0)
  foreach(line IN LISTS lines)
    if(i EQUAL 1 OR i EQUAL 3)
      set(line "9                      Number of values of M or N")
    elseif(i EQUAL 2 OR i EQUAL 4)
      set(line "0 1 2 3 10 64 65 97 132  Values of M or N")
    elseif(i GREATER_EQUAL 16 AND NOT line MATCHES "^${prefix}(GE|GB|TR|PO|PB|SY|HE|QR|LQ|LS) ")
      math(EXPR i "${i} + 1")
      continue()
    endif()
    string(APPEND text "${line}\n")
    math(EXPR i "${i} + 1")
  endforeach()
  file(WRITE ${out} "${text}")
endfunction()
