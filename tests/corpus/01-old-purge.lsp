; three rounds, as it was done before nested purging
(defun c:work (/ oldecho)
  (setq oldecho (getvar "CMDECHO"))
  (setvar "CMDECHO" 0)
  (repeat 3 (command "_.PURGE" "_A" "*" "_N"))
  (command "_.-PURGE" "_R" "*" "_N")
  (setvar "CMDECHO" oldecho)
  (princ))
