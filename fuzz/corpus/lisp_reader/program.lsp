(defun c:job (/ a b)
  ; comment
  (setq a "x\n\101\U+00e9" b 1.5e3)
  (command "_.LINE" '(0 0) "" PAUSE))
