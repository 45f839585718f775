#pragma once
// What a run keeps outside the record: decisions that live from the start of a run to its end and are never
// written to the state file. One struct, so that a module that is loaded again starts from known values.
#include <QString>

struct RunState {
    /// The run was started by a timer: nobody is asked anything.
    bool Scheduled = false;
    /// The first sibling module was unloaded for the run and must come back.
    bool SiblingsUnloaded = false;
    QString QrmModuleName = QStringLiteral("QRM19-64.ARX");
    QString ZenbrixModuleName = QStringLiteral("ZENBRIX19-64.ARX");
    /// Full paths, taken just before unloading.
    QString QrmModulePath;
    QString ZenbrixModulePath;
    /// The file in work as the run log names it.
    QString CurrentFileText;
    /// The file in work has its entry in the run log.
    bool FileIsLogged = false;
    /// The time limit of the file in work is over.
    bool TimeIsOver = false;
    /// The file in work was picked when the script of the one before had settled that, and its own script
    /// has not begun. What that script still says is not about this file.
    bool AwaitsItsScript = false;
};

/// The one instance.
RunState& Run();
/// Everything of a run back to its first values: the record, this struct, the watch and the run log.
void ResetRun();

/// Loads the state file, whose name is worked out first when that was not done yet. A file that is there but
/// holds no state is told on the command line and kept under another name, so that no save can destroy it.
/// The file in work stays the same, at its new place in the order.
void LoadRunState();
/// Saves the state file. A failure is told on the command line in one line, once until a save works again.
void SaveRunState();

/// A file of the data folder.
QString DataFile(const QString& name);
