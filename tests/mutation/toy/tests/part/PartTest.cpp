// SPDX-License-Identifier: GPL-3.0-or-later
#include "../../part/Part.h"

int main() {
    return IsAdult(17) || !IsAdult(18) || IsAdult(0) ? 1 : 0;
}
