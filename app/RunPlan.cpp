// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunPlan.h"

#include "app/DrawingList.h"
#include "app/Files.h"
#include "app/FolderChange.h"
#include "app/NameText.h"
#include "app/RunRecord.h"
#include "state/StateDigest.h"
#include "text/ScriptText.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

bool hasScript(const RunOptions& options) {
    return !options.Script.empty() || !options.Lines.empty();
}

/// The script as the module reads it.
bool takeScript(const RunOptions& options, RunPlan* plan, std::string* error) {
    CTarnelData* record = &plan->Record;
    const std::string file = ScriptName(options);
    QByteArray bytes;
    for (const std::string& line : options.Lines) {
        bytes += line + "\r\n";
    }
    if (options.Lines.empty() && !ReadInput(options.Script, &bytes, error)) {
        return false;
    }
    const ScriptText script = DecodeScript(bytes);
    if (!script.Fault.isEmpty()) {
        *error = file + ": " + script.Fault.toStdString();
        return false;
    }
    if (!script.Note.isEmpty()) {
        Complain(file + ": " + script.Note.toStdString());
    }
    record->Script = script.Script;
    record->ScriptDescription = TakeDescription(record->Script);
    if (record->Script.trimmed().isEmpty()) {
        *error = file + ": the script is empty";
        return false;
    }
    plan->Description.HasHeading = record->Script.size() != script.Script.size();
    record->SetScriptModified(false);
    const bool isFile = options.Lines.empty() && !IsStandardInput(options.Script);
    record->LastScriptFile =
        isFile ? QString::fromStdString(fs::absolute(file).lexically_normal().string()) : QString();
    return true;
}

/// What a new run sets; all else in the record of the data folder stays as it is.
void copyRun(const CTarnelData& from, CTarnelData* to) {
    SetQueue(to, QueueOf(from));
    to->Script = from.Script;
    to->ScriptDescription = from.ScriptDescription;
    to->SetScriptModified(false);
    to->LastScriptFile = from.LastScriptFile;
    to->MaxTime = from.MaxTime;
    to->AlarmTime = from.AlarmTime;
    to->ProcessReadOnly = from.ProcessReadOnly;
}

/// Writes the record into a change and reads it again: what the host will find is what counts. A path that
/// the form of the file cannot hold would name another drawing there.
bool writeToChange(const FolderChange& change, RunPlan* plan, std::string* error) {
    const std::string file = change.Next() + "/TarnelRunner.xml";
    const std::vector<std::string> paths = PathsOf(QueueOf(plan->Record));
    CTarnelData read;
    if (!WriteRecord(file, plan->Record, error) || !ReadRecord(file, &read, error)) {
        return false;
    }
    const std::vector<std::string> found = PathsOf(QueueOf(read));
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (i >= found.size() || paths[i] != found[i]) {
            *error = paths[i] + ": the state file cannot hold this name; rename the drawing";
            return false;
        }
    }
    RunDescription& description = plan->Description;
    description.Queue = MarkOf(paths);
    description.Script = ScriptDigest(read).toStdString();
    description.MaxTime = read.MaxTime;
    description.AlarmTime = read.AlarmTime;
    description.ReadOnly = read.ProcessReadOnly;
    plan->Digest = RunDigest(read).toStdString();
    return true;
}

/// A drawing that was in work when the front was killed with its host: its end was never told. It has its
/// second attempt, like one whose host was killed alone, and no third one.
void setBackWhatWasInWork(RunQueue* queue, RunPlan* plan) {
    for (std::size_t i = 0; i < queue->size(); ++i) {
        const DrawingStatus status = (*queue)[i].Status;
        const bool inWork = status == DrawingStatus::FailOpen || status == DrawingStatus::Error;
        if (status == DrawingStatus::Canceled && !plan->Journal.Records[i]) {
            // Nobody has cancelled it: a fault broke the run off and could not set it back.
            (*queue)[i].Status = DrawingStatus::ToDo;
            plan->Changed = true;
        }
        if (!inWork || plan->Journal.Records[i]) {
            continue;
        }
        if (plan->Journal.TriedAgain[i]) {
            DrawingRecord& record = plan->Journal.Records[i].emplace();
            record.Status = status;
            record.Message = "was in work when the run was killed, and so it was at the second attempt";
        } else {
            (*queue)[i].Status = DrawingStatus::ToDo;
            plan->Journal.TriedAgain[i] = true;
            plan->Changed = true;
        }
    }
}

void setBackWhatIsToBeRetried(RunOptions::RetryKind retry, RunQueue* queue, RunPlan* plan) {
    for (std::size_t i = 0; i < queue->size(); ++i) {
        DrawingStatus& status = (*queue)[i].Status;
        if (status != DrawingStatus::ToDo &&
            (retry == RunOptions::RetryKind::All ||
             (retry == RunOptions::RetryKind::Failed && status != DrawingStatus::Done))) {
            status = DrawingStatus::ToDo;
            plan->Journal.Records[i].reset();
            plan->Journal.TriedAgain[i] = false;
            plan->Changed = true;
        }
    }
}

/// Each is told in a line, whether it is named now or came back from an earlier run.
void refuseWhatIsNoDrawing(RunQueue* queue, RunPlan* plan) {
    plan->Refused.assign(queue->size(), std::nullopt);
    for (std::size_t i = 0; i < queue->size(); ++i) {
        QueueEntry& entry = (*queue)[i];
        if (entry.Status != DrawingStatus::ToDo) {
            continue;
        }
        const std::string why = WhyNoDrawing(entry.Path, plan->Description.Recover);
        if (!why.empty()) {
            entry.Status = DrawingStatus::FailOpen;
            const std::string message = entry.Path + " " + why;
            plan->Refused[i] = DrawingRecord{entry.Path, entry.Status, {}, message, {}, {}, 0, {}, false};
            plan->Changed = true;
            Complain(message);
        }
    }
}

bool changeSettings(const RunOptions& options, RunPlan* plan, std::string* error) {
    CTarnelData& record = plan->Record;
    if (hasScript(options) && !takeScript(options, plan, error)) {
        return false;
    }
    record.MaxTime = options.MaxTime.value_or(record.MaxTime);
    record.AlarmTime = options.AlarmTime.value_or(record.AlarmTime);
    record.ProcessReadOnly = record.ProcessReadOnly || options.ReadOnly;
    RunDescription& description = plan->Description;
    description.Recover = description.Recover || options.Recover;
    description.Lenient = description.Lenient || options.Lenient;
    description.MustSave = description.MustSave || options.MustSave;
    plan->Changed = plan->Changed || hasScript(options) || options.MaxTime || options.AlarmTime ||
                    options.ReadOnly || options.Recover || options.Lenient || options.MustSave;
    return true;
}

/// A run is gone on with as it was started. The window and hosts started by hand work on the same state and
/// may have changed it since: another script is refused, limits are set back.
bool holdToItsRun(const RunOptions& options, const std::string& file, const RunDescription& run, bool isKnown,
                  RunPlan* plan, std::string* error) {
    CTarnelData& record = plan->Record;
    if (run.Script.empty() || (!isKnown && !options.Resume)) {
        return true;
    }
    if (!hasScript(options) && ScriptDigest(record).toStdString() != run.Script) {
        *error = file +
                 ": the script there is not that of the run; give --script FILE to go on with another one, "
                 "or start anew";
        return false;
    }
    if (!isKnown) {
        std::fprintf(stderr,
                     "tarnel: %s: the drawings there are not those of the run; they are taken as they are\n",
                     file.c_str());
    } else if (record.MaxTime != run.MaxTime || record.AlarmTime != run.AlarmTime ||
               record.ProcessReadOnly != run.ReadOnly) {
        std::fprintf(stderr,
                     "tarnel: %s: time limits or --read-only were changed there; those of the run hold\n",
                     file.c_str());
        record.MaxTime = run.MaxTime;
        record.AlarmTime = run.AlarmTime;
        record.ProcessReadOnly = run.ReadOnly;
        plan->Changed = true;
    }
    return true;
}

/// The records that the journal keeps, for a new one that holds nothing else. With a new log nothing of what
/// was done before is in the log any more.
std::vector<DrawingRecord> recordsOf(const RunPlan& plan, bool newLog) {
    const RunQueue queue = QueueOf(plan.Record);
    std::vector<DrawingRecord> records(plan.Journal.Records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i] = plan.Journal.Records[i].value_or(DrawingRecord());
        if (newLog && queue[i].Status != DrawingStatus::ToDo) {
            records[i].Status = queue[i].Status;
            records[i].EarlierLog = true;
        }
    }
    return records;
}

}  // namespace

std::string ScriptName(const RunOptions& options) {
    if (!options.Lines.empty()) {
        return "-e";
    }
    return IsStandardInput(options.Script) ? "standard input" : options.Script;
}

ExitStatus PlanNewRun(const RunOptions& options, RunPlan* plan, std::string* error) {
    plan->Description = NewDescription();
    if (!takeScript(options, plan, error)) {
        return WrongUsage;
    }
    std::vector<std::string> notes;
    const std::vector<std::string> drawings = CollectDrawings(options, &notes, error);
    for (const std::string& note : notes) {
        if (!options.Quiet) {
            Complain(note);
        }
    }
    if (drawings.empty()) {
        return WrongUsage;
    }
    plan->Description.Share = options.Share;
    plan->Description.List = MarkOf(drawings);
    plan->Description.Recover = options.Recover;
    plan->Description.Lenient = options.Lenient;
    plan->Description.MustSave = options.MustSave;
    RunQueue queue;
    for (const std::string& drawing : options.Share ? TakeShare(drawings, *options.Share) : drawings) {
        queue.push_back({drawing, DrawingStatus::ToDo});
    }
    refuseWhatIsNoDrawing(&queue, plan);
    SetQueue(&plan->Record, queue);
    plan->Journal = {std::vector<std::optional<DrawingRecord>>(queue.size()),
                     std::vector<bool>(queue.size())};
    plan->Record.MaxTime = options.MaxTime.value_or(DefaultMaxTime);
    plan->Record.AlarmTime = options.AlarmTime.value_or(DefaultAlarmTime);
    plan->Record.ProcessReadOnly = options.ReadOnly;
    return AllDone;
}

bool CommitNewRun(const DataFolder& folder, const std::optional<RunDescription>& before, RunPlan* plan,
                  std::string* error) {
    RunPlan whole;
    whole.Description = plan->Description;
    const FolderChange change(folder);
    if ((fs::exists(folder.StateFile()) && !ReadRecord(folder.StateFile(), &whole.Record, error)) ||
        !change.Begin(error)) {
        return false;
    }
    copyRun(plan->Record, &whole.Record);
    whole.Description.OldJobs = before ? before->Jobs : 0;
    whole.Description.OldLogs = true;
    if (!writeToChange(change, &whole, error) ||
        !WriteJournal(change.Next(), whole.Description.Id, {}, {}, error) ||
        !change.Commit(&whole.Description, error)) {
        return false;
    }
    plan->Description = whole.Description;
    plan->Digest = whole.Digest;
    plan->Changed = false;
    return true;
}

ExitStatus PlanToGoOn(const RunOptions& options, const DataFolder& folder,
                      const std::optional<RunDescription>& description, RunPlan* plan, std::string* error) {
    if (!fs::exists(folder.StateFile())) {
        *error = folder.Path() + ": no run was started here, so none can go on";
        return BrokenOff;
    }
    if (!ReadRecord(folder.StateFile(), &plan->Record, error)) {
        return BrokenOff;
    }
    RunQueue queue = QueueOf(plan->Record);
    const ListMark mark = MarkOf(PathsOf(queue));
    const bool isKnown = description && description->Queue == mark;
    if (!isKnown && description && description->Share) {
        *error = folder.StateFile() + ": is not the queue of shard " + ShardText(*description->Share) +
                 " that was given to this folder; start the shard again";
        return BrokenOff;
    }
    if (!isKnown && queue.empty()) {
        *error = folder.StateFile() + ": holds no drawings, so there is nothing to go on with";
        return BrokenOff;
    }
    // A queue that the window or another program has saved gets a description here.
    plan->IsKnown = isKnown;
    plan->Description = isKnown ? *description : NewDescription();
    if (!isKnown) {
        plan->Description.HasHeading = !plan->Record.ScriptDescription.isEmpty();
    }
    plan->Changed = !isKnown || plan->Record.SortIdx != 6 || plan->Record.SortReverse != 0;
    plan->Digest = RunDigest(plan->Record).toStdString();
    if (description && !holdToItsRun(options, folder.StateFile(), *description, isKnown, plan, error)) {
        return BrokenOff;
    }
    plan->Journal = ReadJournal(folder, plan->Description.Id, queue.size());
    if (isKnown && options.Resume) {
        setBackWhatWasInWork(&queue, plan);
    }
    setBackWhatIsToBeRetried(options.Retry, &queue, plan);
    if (!changeSettings(options, plan, error)) {
        return WrongUsage;
    }
    refuseWhatIsNoDrawing(&queue, plan);
    SetQueue(&plan->Record, queue);
    return AllDone;
}

std::vector<std::string> LoggedEarlier(const RunPlan& plan) {
    const RunQueue queue = QueueOf(plan.Record);
    std::vector<std::string> drawings;
    for (std::size_t i = 0; plan.IsKnown && i < queue.size(); ++i) {
        const DrawingStatus status = queue[i].Status;
        const auto& told = plan.Journal.Records[i];
        // The journal may have lost a line to the same full disk; then the log must still tell of the
        // drawing. What was no drawing has neither seconds nor an entry.
        const bool isLogged =
            !told || (!told->EarlierLog && (told->Seconds || status != DrawingStatus::FailOpen));
        if (isLogged && status != DrawingStatus::ToDo && status != DrawingStatus::Locked &&
            !plan.Refused[i]) {
            drawings.push_back(queue[i].Path);
        }
    }
    return drawings;
}

bool CommitToGoOn(const RunOptions& options, const DataFolder& folder, RunPlan* plan, std::string* error) {
    if (!plan->Changed) {
        return true;
    }
    const FolderChange change(folder);
    plan->Description.OldLogs = !options.Resume && CountOf(QueueOf(plan->Record), DrawingStatus::ToDo) > 0;
    plan->Changed = false;
    return change.Begin(error) && writeToChange(change, plan, error) &&
           WriteJournal(change.Next(), plan->Description.Id,
                        recordsOf(*plan, plan->Description.OldLogs || !plan->IsKnown),
                        plan->Journal.TriedAgain, error) &&
           change.Commit(&plan->Description, error);
}
