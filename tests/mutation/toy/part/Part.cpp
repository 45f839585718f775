// SPDX-License-Identifier: GPL-3.0-or-later
#include "Part.h"

#define LARGER(a, b) ((a) > (b) ? 1 : 0)

static_assert(LARGER(1 == 1, 0) == 1);

[[maybe_unused]] static const int Spare = 4;

/* What is said here, 1 + 1 == 2, is
   no code; if (true) { Call(); } neither. */
const char Text[] =
    "x == 1 && true"
    R"(
    if (x < 2) { return 0; })";

bool IsAdult(int age) {
    return age >= 18;  // not age > 18
}

int HalfFare(int fare) {
    return fare / 2;
}
