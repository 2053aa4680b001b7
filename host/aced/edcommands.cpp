// The command stack: registration and look-up by name.
