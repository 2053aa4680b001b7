// The editor: running commands, nesting, undo groups, notifications.
