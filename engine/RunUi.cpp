// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/RunUi.h"

#include "engine/ConsoleUi.h"

namespace {
RunUi* current = nullptr;
}

RunUi& CurrentUi() {
    static ConsoleUi console;
    return current ? *current : console;
}

void SetUi(RunUi* ui) {
    current = ui;
}
