(progn (setvar "CMDECHO" 0) (command "_LINE" (list 0 0) (list 1.5 2 0) "") (princ))
