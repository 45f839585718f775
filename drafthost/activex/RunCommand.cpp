// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/activex/RunCommand.h"

namespace drafthost::activex {

bool runCommand(Call& call, std::initializer_list<std::string> answers) {
    std::vector<Value> values;
    for (const std::string& answer : answers) {
        values.push_back(Value::string(answer));
    }
    // The command is not the user's, and nothing is to be read of it.
    auto& host = call.session().host;
    const std::optional<Value> echo = host.getVar("CMDECHO");
    host.setVar("CMDECHO", Value::integer(0));
    const auto status = host.commandS(values);
    call.e.checkDocument();
    if (echo) {
        host.setVar("CMDECHO", *echo);
    }
    return status == automation::CommandStatus::Done;
}

void mustRun(Call& call, std::initializer_list<std::string> answers) {
    if (!runCommand(call, answers)) {
        failAutomation("Description was not provided.");
    }
}

}  // namespace drafthost::activex
