// SPDX-License-Identifier: GPL-3.0-or-later
// A module for the tests: notes what the host tells it and hands the host's calls to LISP and to commands.

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "accmd.h"
#include "acdocman.h"
#include "aced.h"
#include "acedads.h"
#include "acutads.h"
#include "dbmain.h"
#include "rxregsvc.h"

#ifndef MODULE_VERSION
#define MODULE_VERSION kArxApiVersion
#endif
#ifndef MODULE_ANSWER
#define MODULE_ANSWER AcRx::kRetOK
#endif

namespace {

std::string events;

void note(const std::string& event) {
    events += event + " ";
}

std::string narrow(const ACHAR* text) {
    std::string out;
    for (; *text; ++text) {
        out += char(*text);
    }
    return out;
}

class Watcher : public AcEditorReactor {
    void databaseConstructed(AcDbDatabase* database) override {
        database->disablePartialOpen();
        note("constructed");
    }
    void databaseToBeDestroyed(AcDbDatabase*) override { note("destroyed"); }
    void commandWillStart(const ACHAR* name) override { note("start:" + narrow(name)); }
    void commandEnded(const ACHAR* name) override { note("end:" + narrow(name)); }
    void lispCancelled() override { note("lispCancelled"); }
    void beginQuit() override { note("beginQuit"); }
};
Watcher watcher;

/// The text of the first argument.
std::u16string textArgument() {
    resbuf* arguments = acedGetArgs();
    std::u16string text = arguments && arguments->restype == RTSTR ? arguments->resval.rstring : u"";
    acutRelRb(arguments);
    return text;
}

/// Gives back its arguments as a list.
int echoFunction() {
    resbuf* arguments = acedGetArgs();
    acedRetList(arguments);
    acutRelRb(arguments);
    return RSRSLT;
}

/// Opens a drawing in the middle of LISP and goes on talking to the host.
int swapFunction() {
    const std::u16string path = textArgument();
    const int result = acedCommand(RTSTR, u"._load", RTSTR, path.c_str(), RTNONE);
    acutPrintf(u"\nswapped: %d documents: %d\n", result, acDocManagerPtr()->documentCount());
    acedCommand(RTSTR, u"PAIR", RTSTR, u"after", RTSTR, u"swap", RTNONE);
    acedRetT();
    return RSRSLT;
}

int sayFunction() {
    const std::u16string text = textArgument();
    acDocManagerPtr()->sendStringToExecute(acDocManagerPtr()->curDocument(), text.c_str(), true, false,
                                           false);
    acedRetVoid();
    return RSRSLT;
}

int throwFunction() {
    throw std::runtime_error("out of range");
}
int failFunction() {
    return RSERR;
}

/// What the host's calls answer, as one line.
int surveyFunction() {
    resbuf value{};
    std::string line;
    auto add = [&](bool good, const char* what) { line += good ? "" : std::string(what) + " "; };
    add(acedGetVar(u"cmdecho", &value) == RTNORM && value.restype == RTSHORT && value.resval.rint == 1,
        "getvar");
    add(acedGetVar(u"NOSUCH", &value) == RTERROR, "getvar-unknown");
    resbuf* number = acutBuildList(RTSHORT, 5, RTNONE);
    add(acedSetVar(u"SDI", number) == RTERROR, "setvar-range");
    add(acedPutSym(u"fromModule", number) == RTNORM, "putsym");
    add(acedPutSym(u"pi", number) == RTERROR, "putsym-protected");
    acutRelRb(number);
    resbuf* symbol = nullptr;
    add(acedGetSym(u"FROMMODULE", &symbol) == RTNORM && symbol && symbol->restype == RTSHORT, "getsym");
    acutRelRb(symbol);
    add(acedGetSym(u"unbound-thing", &symbol) == RTNORM && !symbol, "getsym-nil");
    add(acedGetSym(u"car", &symbol) == RTERROR, "getsym-function");
    add(acutWcMatch(u"plan.DXF", u"*.DXF") == RTNORM, "wcmatch");
    add(acutWcMatch(u"plan.DXF", u"*.dxf") == RTERROR, "wcmatch-case");
    add(acutWcMatchEx(u"plan.DXF", u"~*.txt,*.dxf", true), "wcmatchex");
    ACHAR path[512];
    add(acedFindFile(u"no-such-file.txt", path, 512) == RTERROR, "findfile");
    add(acrxModulePath(u"API_MODULE.ARX", path, 512), "modulepath");
    add(!acrxModulePath(u"API_MODULE.ARX", path, 5), "modulepath-size");
    add(acutBuildList(RTMODELESS, 1, RTNONE) == nullptr, "buildlist-unknown");
    add(acedCommand(RTSTR, u"no-such-command", RTNONE) == RTERROR, "command-unknown");
    add(!acDocManagerPtr()->isApplicationContext(), "context");
    bool inside = false;
    acDocManagerPtr()->executeInApplicationContext(
        [](void* data) {
            *static_cast<bool*>(data) =
                acDocManagerPtr()->isApplicationContext() && acedCommand(RTSTR, u"PAIR", RTNONE) == RTREJ;
        },
        &inside);
    add(inside, "application-context");
    resbuf* call = acutBuildList(RTSTR, u"echo-back", RTREAL, 2.5, RTNONE);
    resbuf* out = nullptr;
    add(acedInvoke(call, &out) == RTNORM && out && out->restype == RTLB && out->rbnext->restype == RTREAL,
        "invoke");
    acutRelRb(out);
    acutRelRb(call);
    acutPrintf(u"[%s|%05.1f|%-3d|%c|%%|%x]", u"\u00e4", 2.25, 7, u'z', 255u);
    const std::u16string wide(line.begin(), line.end());
    acedRetStr(wide.c_str());
    return RSRSLT;
}

void closeOthers(void*) {
    AcApDocManager* manager = acDocManagerPtr();
    AcApDocumentIterator* at = manager->newAcApDocumentIterator();
    for (; !at->done(); at->step()) {
        if (at->document() != manager->curDocument()) {
            manager->closeDocument(at->document());
        }
    }
    delete at;
}

void askCommand() {
    ACHAR text[64];
    int number = 0;
    acedInitGet(0, u"Yes No");
    ACHAR keyword[16];
    const int k = acedGetKword(u"\nSure? ", keyword, 16);
    const int n = acedGetInt(u"\nHow many? ", &number);
    const int s = acedGetString(1, u"\nName? ", text, 64);
    acutPrintf(u"asked: %d %d %d", k, n, s);
    if (s == RTNORM) {
        acutPrintf(u" %s %d %s", keyword, number, text);
    }
    acutPrintf(u"\n");
}

/// Calls other commands, and leaves one unfinished.
void nestCommand() {
    const int done = acedCommand(RTSTR, u"PAIR", RTSTR, u"from", RTSTR, u"module", RTNONE);
    const int unknown = acedCommand(RTSTR, u"NOSUCH", RTNONE);
    const int begun = acedCommand(RTSTR, u"PAIR", RTSTR, u"half", RTNONE);
    const int ended = acedCommand(RTSTR, u"done", RTNONE);
    acutPrintf(u"nested: %d %d %d %d\n", done, unknown, begun, ended);
    acedCommand(RTSTR, u"PAIR", RTSTR, u"left", RTNONE);
}

/// Changes the drawing under itself.
void leaveCommand() {
    ACHAR path[512];
    acedGetString(0, u"\nTo? ", path, 512);
    acedCommand(RTSTR, u"LOAD", RTSTR, path, RTNONE);
    acedCommand(RTSTR, u"PAIR", RTSTR, u"in", RTSTR, u"second", RTNONE);
}

void closeCommand() {
    acDocManagerPtr()->executeInApplicationContext(closeOthers, nullptr);
}

struct Function {
    const ACHAR* name;
    int (*call)();
};
constexpr Function Functions[] = {{u"echo-back", echoFunction}, {u"swap", swapFunction},
                                  {u"say", sayFunction},        {u"throw-it", throwFunction},
                                  {u"fail-it", failFunction},   {u"survey", surveyFunction}};

}  // namespace

extern "C" ARX_EXPORT const char* moduleEvents() {
    return events.c_str();
}

extern "C" ARX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId) {
    note("msg" + std::to_string(int(message)));
    if (message == AcRx::kInitAppMsg) {
        auto* linker = AcRxDynamicLinker::cast(acrxSysRegistry()->at(u"DynamicLinker"));
        linker->unlockApplication(appId);
        linker->registerAppMDIAware(appId);
        acedRegCmdsPtr()->addCommand(u"TESTS", u"ASK", u"ASK", ACRX_CMD_MODAL, askCommand);
        acedRegCmdsPtr()->addCommand(u"TESTS", u"NEST", u"NEST", ACRX_CMD_MODAL, nestCommand);
        acedRegCmdsPtr()->addCommand(u"TESTS", u"LEAVE", u"LEAVE", ACRX_CMD_MODAL, leaveCommand);
        acedRegCmdsPtr()->addCommand(u"TESTS", u"CLOSEOTHERS", u"CLOSEOTHERS", ACRX_CMD_SESSION,
                                     closeCommand);
        acedEditorPtr()->addReactor(&watcher);
        return MODULE_ANSWER;
    }
    if (message == AcRx::kUnloadAppMsg) {
        acedEditorPtr()->removeReactor(&watcher);
        acedRegCmdsPtr()->removeGroup(u"TESTS");
    }
    if (message == AcRx::kLoadDwgMsg) {
        int code = 0;
        for (const Function& function : Functions) {
            acedDefun(function.name, ++code);
            acedRegFunc(function.call, code);
        }
    }
    return AcRx::kRetOK;
}

#ifndef MODULE_WITHOUT_VERSION
extern "C" ARX_EXPORT int acrxGetApiVersion() {
    return MODULE_VERSION;
}
#endif
