// XREF: the external references of the drawing in a dialog. What its buttons do is done by -XREF.
#pragma once

/// To be called once the host's commands are registered.
void acuiRegisterXrefCommand();
