// Selection sets by window, crossing, filter and by the user.
