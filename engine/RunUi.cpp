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
