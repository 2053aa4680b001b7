// The small LISP: enough for menu expressions, scripts and the functions that modules define.
//
// Values: nil, T, integers, reals, texts, symbols, lists. Functions: quote, if, progn, cond, and, or, not,
// null, =, /=, <, >, <=, >=, +, -, *, /, strcat, list, car, cdr, cadr, nth, length, setq, princ,
// print, command, menucmd, menugroup, getvar, setvar, findfile, strcase, itoa, atoi, rtos, atof, and those
// defined by modules. Depth and length of what is read are bounded.
#pragma once

#include "host/acdb/resbuf.h"
#include "host/base/result.h"

/// Reads and evaluates one expression; the value as LISP prints it, or a sentence that says what is wrong
/// and where.
base::Result<QString, QString> acedEvaluateLisp(const QString &expression);

/// Defines a function of the module that is handling a message: calling it sends kInvkSubrMsg to the module
/// with this code. RTNORM or RTERROR.
int acedDefun(const QString &name, int code);
int acedUndef(const QString &name);
/// Inside kInvkSubrMsg: the code of the called function, its arguments, and its result.
int acedGetFunCode();
ResbufList acedGetArgs();
int acedRetInt(int value);
int acedRetNil();
