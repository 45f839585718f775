// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Commands, variables, prompts and LISP functions of the current document.
#include "resbuf.h"

/// Feeds a command with type and value pairs, ended by RTNONE (RTLB and RTLE stand alone). RTSTR "" is
/// Enter, RTSTR "\\" lets the user answer, RTNONE alone cancels. RTNORM, RTCAN when the user cancelled,
/// RTERROR for a bad list or a command that failed, RTREJ where commands are not allowed.
ARX_EXPORT int acedCommand(int type, ...);
/// The same from a chain, which stays the caller's.
ARX_EXPORT int acedCmd(const resbuf* chain);
/// Reads a system variable, the name in any case: RTSHORT, RTREAL, RTSTR (allocated, the caller frees it
/// through acutRelRb or free), RTPOINT, RT3DPOINT. RTERROR for an unknown name.
ARX_EXPORT int acedGetVar(const ACHAR* name, resbuf* out);
/// Sets a system variable: RTNORM, or RTERROR when it is unknown, read-only, or the value does not fit.
ARX_EXPORT int acedSetVar(const ACHAR* name, const resbuf* value);
/// Value of a LISP symbol of the current document. RTNORM and a null list for nil and for an unbound one.
ARX_EXPORT int acedGetSym(const ACHAR* name, resbuf** out);
/// Sets a LISP symbol of the current document; a list is passed as RTLB ... RTLE.
ARX_EXPORT int acedPutSym(const ACHAR* name, const resbuf* value);
/// The next command only may show its dialog although code calls it; false takes that back.
ARX_EXPORT void acedInitDialog(bool useDialog);
/// Queues one complete LISP expression until the host is ready to read commands. RTNORM.
ARX_EXPORT int ads_queueexpr(const ACHAR* expression);
/// True once after the user cancelled.
ARX_EXPORT int acedUsrBrk();
/// Looks for a file: a name with a folder only there, others along the library path. RTNORM and the full
/// path in result (size units with the end mark), else RTERROR.
ARX_EXPORT int acedFindFile(const ACHAR* name, ACHAR* result, int size);

/// Bits and keywords (blank-separated, capitals are the abbreviation) for the next prompt. Bit 1 refuses
/// an empty answer.
ARX_EXPORT int acedInitGet(int bits, const ACHAR* keywords);
/// Asks for a keyword; RTNORM and the full keyword, RTNONE for Enter, RTCAN.
ARX_EXPORT int acedGetKword(const ACHAR* prompt, ACHAR* result, int size);
/// Asks for an integer; RTNORM, RTNONE for Enter, RTCAN.
ARX_EXPORT int acedGetInt(const ACHAR* prompt, int* result);
/// Asks for text; with blanks when withBlanks is not 0. RTNORM or RTCAN.
ARX_EXPORT int acedGetString(int withBlanks, const ACHAR* prompt, ACHAR* result, int size);

/// Makes a LISP function of the module known to the current document under a code of the module.
ARX_EXPORT int acedDefun(const ACHAR* name, int code);
/// Takes it away again.
ARX_EXPORT int acedUndef(const ACHAR* name, int code);
/// Binds the code to a function, called directly with the arguments ready in acedGetArgs.
ARX_EXPORT int acedRegFunc(int (*function)(), int code);
/// Code of the LISP function that is being called.
ARX_EXPORT int acedGetFunCode();
/// Arguments of the running LISP function, null for none. The caller frees them.
ARX_EXPORT resbuf* acedGetArgs();
ARX_EXPORT int acedRetT();
ARX_EXPORT int acedRetNil();
ARX_EXPORT int acedRetVoid();
ARX_EXPORT int acedRetInt(int value);
ARX_EXPORT int acedRetReal(ads_real value);
ARX_EXPORT int acedRetStr(const ACHAR* value);
ARX_EXPORT int acedRetList(const resbuf* chain);
/// Calls a LISP function of a module: the name, then its values. *out is null for no result.
ARX_EXPORT int acedInvoke(const resbuf* arguments, resbuf** out);
