// The functions that the module gives to the host's LISP.
#pragma once

/// Defines them for the drawing that was just opened; RTERROR at the first that the host refuses, else
/// RTNORM.
int defineLispFunctions();
/// Runs the function that LISP called; RTERROR for a code that is no function of the module.
int invokeLispFunction();
