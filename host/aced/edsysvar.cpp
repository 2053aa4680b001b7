// Reading and setting system variables.
