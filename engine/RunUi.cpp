#include "engine/RunUi.h"

namespace {
RunUi* current = nullptr;
}

RunUi& Ui() {
    return *current;
}

void SetUi(RunUi* ui) {
    current = ui;
}
