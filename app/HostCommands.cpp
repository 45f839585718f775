#include "app/HostCommands.h"

#include "app/LispText.h"

#include <filesystem>

namespace {

std::string Switch(const char* function, bool on) {
    return std::string("(") + function + (on ? " T)\n" : " nil)\n");
}

std::string SetScript(const RunOptions& options) {
    return "(Tarnel_SetScript " +
           LispString(std::filesystem::absolute(options.Script).lexically_normal().string()) + ")\n";
}

std::string Times(std::optional<unsigned> maxTime, std::optional<unsigned> alarmTime) {
    std::string text;
    if (maxTime) {
        text += "Maxtime\n" + std::to_string(*maxTime) + "\n";
    }
    if (alarmTime) {
        text += "Alarmtime\n" + std::to_string(*alarmTime) + "\n";
    }
    return text;
}

}  // namespace

std::string StartCommands(const RunOptions& options, const std::vector<std::string>& drawings) {
    return "TARNEL\n" +
           Times(options.MaxTime.value_or(kDefaultMaxTime), options.AlarmTime.value_or(kDefaultAlarmTime)) +
           "eXit\n" + SetScript(options) + Switch("Tarnel_DoReadOnly", options.ReadOnly) +
           Switch("Tarnel_SetRecoverMode", options.Recover) + LispRunList(drawings);
}

std::string ContinueCommands(const RunOptions& options) {
    std::string text;
    if (!options.Script.empty()) {
        text += SetScript(options);
    }
    if (options.ReadOnly) {
        text += Switch("Tarnel_DoReadOnly", true);
    }
    if (options.Recover) {
        text += Switch("Tarnel_SetRecoverMode", true);
    }
    text += "TARNEL\n" + Times(options.MaxTime, options.AlarmTime);
    if (options.Retry == RunOptions::RetryKind::Failed) {
        text += "reTry\nFailed\n";
    } else if (options.Retry == RunOptions::RetryKind::All) {
        text += "reTry\nAll\n";
    }
    return text + "Run\n";
}

std::string RestartCommands(const RunOptions& options) {
    return (options.Recover ? Switch("Tarnel_SetRecoverMode", true) : std::string()) + "TARNEL\nRun\n";
}
