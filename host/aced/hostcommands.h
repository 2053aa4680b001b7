// The host's own commands: files, editing, views, layers, drawing.
#pragma once

/// Registers them in group "HOST", and their short names (L for LINE); harmless when repeated.
void acedRegisterHostCommands();
