; a comment
(setq a 1 b 2.5 c "x\"y\n\101\U+8BC4")
