// The table of system variables.
