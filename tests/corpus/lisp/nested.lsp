(cond ((= (length '(1 2 (3 "four"))) 3) (strcat (itoa (nth 1 '(1 2))) (rtos 1.5 2 3))) (T nil))
