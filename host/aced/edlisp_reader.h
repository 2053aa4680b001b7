// The reader of the small LISP: text to values.
#pragma once

#include "host/aced/edlisp_value.h"
#include "host/base/result.h"

namespace lisp
{

/// Exactly one expression, with blanks and comments (";" to the end of the line) around it. Texts know the
/// escapes \\ \" \n \r \t \e \nnn (octal) and \U+XXXX. 'x is (quote x). Integers beyond 32 bits are reals.
base::Result<Value, Fault> readExpression(QStringView text);

} // namespace lisp
